// The key structures that show and encode know, by their TYPE names.
#ifndef KEYASN_TOOLS_TYPES_H_
#define KEYASN_TOOLS_TYPES_H_

#include <string>
#include <vector>

#include "common.h"
#include "view.h"

namespace keyasn {
namespace tool {

// TypeInfo binds a TYPE name to the library class that reads and writes it.
struct TypeInfo {
  const char* name;       // the TYPE of --as
  const char* structure;  // the library class
  const char* summary;    // one line for --help
  bool single_element;    // the input is exactly one BER/DER element
  // Show decodes `der` with the library and fills `view`; throws ToolError.
  void (*show)(const Bytes& der, View* view);
  // Encode builds the structure from JSON and returns its encoding; throws ToolError.
  Bytes (*encode)(const JsonIn& in);
};

// AllTypes lists every TYPE in the order of --help.
const std::vector<TypeInfo>& AllTypes();
const TypeInfo* FindType(const std::string& name);

// Each family registers its TYPEs.
void AddKeyTypes(std::vector<TypeInfo>* types);
void AddRecordTypes(std::vector<TypeInfo>* types);
void AddTokenTypes(std::vector<TypeInfo>* types);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_TYPES_H_
