// The version text of --version: the tool's, and that of the library it runs with.
#ifndef KEYASN_TOOLS_VERSION_H_
#define KEYASN_TOOLS_VERSION_H_

#include <string>

namespace keyasn {
namespace tool {

// VersionText is two lines, "keyasn TOOL" and "libkeyasn LIB": the library's
// version as the loaded library reports it.
std::string VersionText(const std::string& tool_version);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_VERSION_H_
