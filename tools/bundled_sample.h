// The sample container built into the tool, so that it shows something useful
// with no input at all.
#ifndef KEYASN_TOOLS_BUNDLED_SAMPLE_H_
#define KEYASN_TOOLS_BUNDLED_SAMPLE_H_

#include <cstddef>

namespace keyasn {
namespace tool {

extern const unsigned char kBundledSample[];
extern const std::size_t kBundledSampleSize;

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_BUNDLED_SAMPLE_H_
