#include "version.h"

#include "keyasn/version.h"

namespace keyasn {
namespace tool {

std::string VersionText(const std::string& tool_version) {
  // The library's own answer: the shared object loaded may be newer than the tool.
  return "keyasn " + tool_version + "\nlibkeyasn " + keyasn::Version();
}

}  // namespace tool
}  // namespace keyasn
