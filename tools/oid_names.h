// Names of well-known object identifiers: PKIX, PKCS, X.500 attributes, the
// X9.62/SECG and NIST algorithms, and the GOST arcs under 1.2.643.
#ifndef KEYASN_TOOLS_OID_NAMES_H_
#define KEYASN_TOOLS_OID_NAMES_H_

#include <string>

namespace keyasn {
namespace tool {

// OidName returns the name of the dotted identifier, or null when it is unknown.
const char* OidName(const std::string& dotted);

// OidTableSorted checks the order the lookup relies on.
bool OidTableSorted();

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_OID_NAMES_H_
