// Object identifier names beyond the built-in ones: files in the format of
// dumpasn1's configuration ("OID = 06 03 55 04 03" then "Description = ...") or
// of openssl's -oid option ("1.2.3.4 shortName longName"), and the system's
// dumpasn1 configuration when it is installed.
#ifndef KEYASN_TOOLS_OID_CONFIG_H_
#define KEYASN_TOOLS_OID_CONFIG_H_

#include <map>
#include <string>
#include <vector>

namespace keyasn {
namespace tool {

// The configuration file of Debian's dumpasn1 package, read unless "none" is
// among the files or the environment has KEYASN_OIDS=none.
extern const std::string kSystemOidFile;

// ParseOidNames reads names from the text of a file in either format into
// `names` (a name already there is kept). False, with the line number in
// `problem`, when a line is neither a comment nor a name.
bool ParseOidNames(const std::string& text, std::map<std::string, std::string>* names,
                   std::string* problem);

// LoadOidNames reads the files given (earlier ones win), then the system file.
// Throws ToolError (kExitIo, kExitMalformed) naming the file that fails.
void LoadOidNames(const std::vector<std::string>& files);

// ForgetOidNames drops the names read from files, so that a program can load
// other files afresh (the built-in names stay).
void ForgetOidNames();

// OidName returns the name of a dotted identifier, or null when it is unknown:
// the built-in name first under the GOST arc 1.2.643, elsewhere the names read
// from files first and the built-in ones as the fallback.
const char* OidName(const std::string& dotted);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_OID_CONFIG_H_
