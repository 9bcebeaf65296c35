#include "common.h"

namespace keyasn {
namespace tool {

void HexDigits(const unsigned char* data, std::size_t size, char* out) {
  static const char kDigits[] = "0123456789ABCDEF";
  for (std::size_t i = 0; i < size; ++i) {
    out[2 * i] = kDigits[data[i] >> 4];
    out[2 * i + 1] = kDigits[data[i] & 0x0F];
  }
}

std::string ToHex(const unsigned char* data, std::size_t size) {
  std::string text(2 * size, '\0');
  HexDigits(data, size, &text[0]);
  return text;
}

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

bool ParseHex(const std::string& text, Bytes* out) {
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  int high = -1;
  for (char c : text) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ':') {
      if (high >= 0) return false;  // a separator inside an octet
      continue;
    }
    int digit = HexDigit(c);
    if (digit < 0) return false;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<unsigned char>(high << 4 | digit));
      high = -1;
    }
  }
  if (high >= 0) return false;
  out->swap(bytes);
  return true;
}

}  // namespace tool
}  // namespace keyasn
