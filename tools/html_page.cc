#include "html_page.h"

#include <cstring>

namespace keyasn {
namespace tool {

std::string ScriptJson(const nlohmann::ordered_json& data) {
  const std::string text = data.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size() + text.size() / 16);
  // These characters occur in JSON text only inside strings, where the escape
  // reads back as the same character.
  for (char c : text) {
    switch (c) {
      case '<': safe += "\\u003c"; break;
      case '>': safe += "\\u003e"; break;
      case '&': safe += "\\u0026"; break;
      default: safe += c;
    }
  }
  return safe;
}

void WritePage(const nlohmann::ordered_json& data, std::ostream& out) {
  static const char kMark[] = "@KEYASN_DATA@";
  const char* at = std::strstr(kViewPage, kMark);
  out.write(kViewPage, at - kViewPage);
  out << ScriptJson(data);
  out << (at + sizeof kMark - 1);
}

}  // namespace tool
}  // namespace keyasn
