#include "version.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>

#include "keyasn/codec/header.h"

namespace keyasn {
namespace tool {

std::string VersionText(const std::string& tool_version) {
  std::string text = "keyasn " + tool_version;
  Dl_info info{};
  // Any function of the library tells which shared object holds it.
  if (dladdr(reinterpret_cast<void*>(&ASNTGetAsnInfo), &info) == 0 || info.dli_fname == nullptr) {
    return text + "\nlibkeyasn (linked statically)";
  }
  char resolved[PATH_MAX];
  const std::string path = realpath(info.dli_fname, resolved) != nullptr ? resolved : info.dli_fname;
  const std::size_t so = path.rfind(".so.");
  const std::string version = so == std::string::npos ? "unknown" : path.substr(so + 4);
  return text + "\nlibkeyasn " + version + " (" + path + ")";
}

}  // namespace tool
}  // namespace keyasn
