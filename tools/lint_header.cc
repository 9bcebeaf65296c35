// Identifier and length octets in their DER form (X.690 8.1.2, 8.1.3, 10.1).
#include <cstdint>

#include "lint_rules.h"

namespace keyasn {
namespace tool {

namespace {

std::string Hex2(unsigned int octet) {
  static const char kDigits[] = "0123456789ABCDEF";
  return std::string{kDigits[(octet >> 4) & 0xF], kDigits[octet & 0xF]};
}

// MinimalLength is the DER length octets of `length`, spaced.
std::string MinimalLength(std::size_t length) {
  if (length < 0x80) return Hex2(static_cast<unsigned int>(length));
  std::string octets;
  unsigned int count = 0;
  for (std::size_t rest = length; rest != 0; rest >>= 8) {
    octets = " " + Hex2(static_cast<unsigned int>(rest & 0xFF)) + octets;
    ++count;
  }
  return Hex2(0x80 | count) + octets;
}

}  // namespace

std::string OctetsText(const unsigned char* data, std::size_t size) {
  constexpr std::size_t kShown = 8;
  std::string text;
  for (std::size_t i = 0; i < size && i < kShown; ++i) {
    if (i != 0) text += ' ';
    text += Hex2(data[i]);
  }
  if (size > kShown) text += " ...";
  return text;
}

void CheckHeader(const Checked& c, Findings* findings) {
  const Element& e = c.element;
  if (e.end_of_contents) return;
  const unsigned char* p = c.data + e.offset;
  // The walk accepted the header, so its identifier octets lie within it.
  std::size_t id_length = 1;
  if ((p[0] & 0x1F) == 0x1F) {
    while (id_length + 1 < e.header_length && (p[id_length] & 0x80) != 0) ++id_length;
    ++id_length;
    const std::string id = OctetsText(p, id_length);
    if (p[1] == 0x80) {
      findings->Error(c, "tag.non-minimal",
                      "tag number written with a leading zero group (" + id + ")");
    }
    if (e.tag < 31) {
      findings->Error(c, "tag.long-form-low",
                      "tag number " + std::to_string(e.tag) + " in the high-tag form (" + id +
                          "); it fits in one identifier octet");
    }
  }
  const unsigned char* length = p + id_length;
  if (length[0] == 0x80) {
    findings->Error(c, "length.indefinite", "indefinite length (80)");
    return;
  }
  if (length[0] < 0x80) return;
  const std::size_t count = e.header_length - id_length - 1;
  if (length[1] == 0 || (count == 1 && length[1] < 0x80)) {
    findings->Error(c, "length.non-minimal",
                    "length " + std::to_string(e.length) + " written as " +
                        OctetsText(length, count + 1) + "; DER writes " +
                        MinimalLength(e.length));
  }
}

}  // namespace tool
}  // namespace keyasn
