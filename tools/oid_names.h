// Names of well-known object identifiers: PKIX, PKCS, X.500 attributes, the
// X9.62/SECG and NIST algorithms, and the GOST arcs under 1.2.643.
#ifndef KEYASN_TOOLS_OID_NAMES_H_
#define KEYASN_TOOLS_OID_NAMES_H_

#include <string>

namespace keyasn {
namespace tool {

// BuiltinOidName returns the built-in name of the dotted identifier, or null
// when it has none (OidName, in oid_config.h, also looks in the files read).
const char* BuiltinOidName(const std::string& dotted);

// OidTableSorted checks the order the lookup relies on.
bool OidTableSorted();

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_OID_NAMES_H_
