// Test helpers: hex literals to buffers and back. Used by the *_test.cc files only.
#ifndef KEYASN_SUPPORT_TEST_HEX_H_
#define KEYASN_SUPPORT_TEST_HEX_H_

#include <cctype>
#include <stdexcept>
#include <string>
#include <vector>

#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace testing {

// HexBytes("30 03 02 01 05") -> {0x30, 0x03, 0x02, 0x01, 0x05}; blanks are ignored.
inline std::vector<unsigned char> HexBytes(const std::string& hex) {
  std::vector<unsigned char> out;
  int hi = -1;
  for (char c : hex) {
    if (std::isspace(static_cast<unsigned char>(c)) || c == ':') continue;
    if (!std::isxdigit(static_cast<unsigned char>(c))) throw std::invalid_argument(hex);
    const int v = std::isdigit(static_cast<unsigned char>(c))
                      ? c - '0'
                      : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10;
    if (hi < 0) {
      hi = v;
    } else {
      out.push_back(static_cast<unsigned char>(hi << 4 | v));
      hi = -1;
    }
  }
  if (hi >= 0) throw std::invalid_argument(hex);
  return out;
}

// Hex("...") -> IdentObj holding those octets.
inline IdentObj Hex(const std::string& hex) {
  const std::vector<unsigned char> v = HexBytes(hex);
  return IdentObj(v.data(), static_cast<unsigned int>(v.size()));
}

// ToHex(buffer) -> "30 03 02 01 05" (upper case, one blank between octets).
inline std::string ToHex(const unsigned char* data, size_t size) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string s;
  for (size_t i = 0; i < size; ++i) {
    if (i) s += ' ';
    s += kDigits[data[i] >> 4];
    s += kDigits[data[i] & 15];
  }
  return s;
}
inline std::string ToHex(const IdentObj& obj) { return ToHex(obj.GetData(), obj.Count()); }
inline std::string ToHex(const std::vector<unsigned char>& v) { return ToHex(v.data(), v.size()); }

}  // namespace testing
}  // namespace keyasn

#endif  // KEYASN_SUPPORT_TEST_HEX_H_
