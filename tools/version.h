// The version text of --version: the tool's, and that of the library it runs with.
#ifndef KEYASN_TOOLS_VERSION_H_
#define KEYASN_TOOLS_VERSION_H_

#include <string>

namespace keyasn {
namespace tool {

// VersionText is "keyasn TOOL\nlibkeyasn LIB (PATH)", the library's version
// read from the name of the shared object loaded.
std::string VersionText(const std::string& tool_version);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VERSION_H_
