// Whether input that a TYPE's reader accepted really is of that TYPE, so that
// show refuses a certificate read --as validity instead of showing nonsense.
#ifndef KEYASN_TOOLS_TYPE_CHECK_H_
#define KEYASN_TOOLS_TYPE_CHECK_H_

#include <string>

#include "common.h"
#include "types.h"

namespace keyasn {
namespace tool {

// CheckType returns what does not fit (empty when the input is a `type`):
// `round_trip` is show's finding that encode would not give the octets back
// (empty when it would), which counts against the TYPEs that always round-trip.
std::string CheckType(const TypeInfo& type, const Bytes& der, const std::string& round_trip);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_TYPE_CHECK_H_
