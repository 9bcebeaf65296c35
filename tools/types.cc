#include "types.h"

namespace keyasn {
namespace tool {

const std::vector<TypeInfo>& AllTypes() {
  static const std::vector<TypeInfo> types = [] {
    std::vector<TypeInfo> all;
    AddKeyTypes(&all);
    AddRecordTypes(&all);
    AddTokenTypes(&all);
    return all;
  }();
  return types;
}

const TypeInfo* FindType(const std::string& name) {
  for (const TypeInfo& type : AllTypes()) {
    if (name == type.name) return &type;
  }
  return nullptr;
}

}  // namespace tool
}  // namespace keyasn
