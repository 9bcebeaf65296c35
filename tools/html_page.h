// The page of the view command: a template (tools/view_page.html, built in) with
// the data of one input put in a script element as JSON.
#ifndef KEYASN_TOOLS_HTML_PAGE_H_
#define KEYASN_TOOLS_HTML_PAGE_H_

#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

namespace keyasn {
namespace tool {

// The page template; "@KEYASN_DATA@" marks where the data goes.
extern const char kViewPage[];

// ScriptJson is `data` as JSON text that can stand inside a script element:
// '<', '>' and '&' are written as \u escapes, so that no text of the input can
// close the element or open a comment, and invalid UTF-8 is replaced.
std::string ScriptJson(const nlohmann::ordered_json& data);

// WritePage writes the page with `data` in it.
void WritePage(const nlohmann::ordered_json& data, std::ostream& out);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_HTML_PAGE_H_
