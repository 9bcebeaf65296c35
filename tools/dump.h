// The dump command's two renderings of an element tree: one text line per
// element, or a JSON array of the top-level elements.
#ifndef KEYASN_TOOLS_DUMP_H_
#define KEYASN_TOOLS_DUMP_H_

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "der_walk.h"
#include "json_text.h"
#include "lint.h"

namespace keyasn {
namespace tool {

using Json = nlohmann::ordered_json;

// Marks are the lint findings attached to one element.
using Marks = std::vector<const Finding*>;

// TypeName names an element: a universal type name, "[n]", "[APPLICATION n]" or
// "[PRIVATE n]" ("EOC" for end-of-contents octets).
std::string TypeName(unsigned char tag_class, unsigned int tag);

// IsStringType: a universal tag whose contents are text octets as they stand
// (not BMPString or UniversalString, which are UTF-16 and UTF-32).
bool IsStringType(unsigned int tag);

// ClassName is "universal", "application", "context" or "private".
const char* ClassName(unsigned char tag_class);

// DumpText writes one line per element: offset, header length, contents length
// ("inf" for an indefinite length), "cons" or "prim", the name indented by depth,
// and the readable value of a primitive (octets shortened unless `full`), then
// "  ! RULE" for each lint finding on the element.
void DumpText(const Tree& tree, const unsigned char* data, bool full, std::ostream& out);

// AppendElementLine appends the text line of one element (without the line end),
// octets shortened past `octets` (0: never), ending with "  ! RULE" per mark.
void AppendElementLine(OutText* line, const Element& element, const unsigned char* data,
                       std::size_t octets, const Marks* marks = nullptr);

// AddElementMembers writes the members of one element's JSON object, all but its
// "children", with a "findings" array when there are marks.
void AddElementMembers(JsonObject* object, const Element& element, const unsigned char* data,
                       const Marks* marks = nullptr);

// ValueText is the readable value of a primitive as its text line shows it,
// octets shortened past `octets` (0: never); empty when there is none.
std::string ValueText(const Element& element, const unsigned char* data, std::size_t octets);

// PrimitiveValue is the JSON "value" of a primitive element; false when it is null.
bool PrimitiveValue(const Element& element, const unsigned char* data, std::string* value);

// DumpLines is DumpText into lines, `indent` spaces before each, for embedding an
// element's tree in other output (show).
std::string DumpLines(const unsigned char* data, std::size_t size, const std::string& indent,
                      bool full);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_DUMP_H_
