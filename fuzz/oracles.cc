#include "fuzz/oracles.h"

namespace keyasn_fuzz {

bool OidText(const uint8_t* contents, size_t length, std::string* text) {
  text->clear();
  if (length == 0) return true;
  *text = std::to_string(contents[0] / 40) + "." + std::to_string(contents[0] % 40) + ".";
  size_t i = 1;
  while (i < length) {
    uint32_t value = 0;
    for (;;) {
      const uint8_t octet = contents[i++];
      value = value << 7 | (octet & 0x7Fu);
      if (!(octet & 0x80)) break;
      if (i == length) {
        text->clear();
        return false;
      }
    }
    *text += std::to_string(value);
    if (i < length) *text += ".";
  }
  return true;
}

std::vector<uint8_t> IntegerValue(const uint8_t* contents, size_t length) {
  size_t start = length >= 2 && contents[0] == 0 ? 1 : 0;
  return std::vector<uint8_t>(std::make_reverse_iterator(contents + length),
                              std::make_reverse_iterator(contents + start));
}

std::vector<uint8_t> MinimalInteger(const std::vector<uint8_t>& value) {
  size_t n = value.size();
  while (n >= 2) {
    const uint8_t top = value[n - 1], next = value[n - 2];
    if ((top == 0x00 && !(next & 0x80)) || (top == 0xFF && (next & 0x80)))
      --n;
    else
      break;
  }
  return std::vector<uint8_t>(value.rend() - n, value.rend());
}

uint64_t FileTime64(const uint8_t* octets) {
  uint64_t v = 0;
  for (int i = 7; i >= 0; --i) v = v << 8 | octets[i];
  return v;
}

}  // namespace keyasn_fuzz
