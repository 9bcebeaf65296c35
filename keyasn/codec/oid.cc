#include "keyasn/codec/oid.h"

#include <cstdint>
#include <cstring>

#include "keyasn/codec/oid_text.h"

namespace keyasn {

namespace {

// The first octet holds 40 * X + Y with X at most 2 and Y below 40.
constexpr unsigned int kFirstOctetLimit = 120;
constexpr unsigned int kFirstArcLimit = 3;
constexpr unsigned int kSecondArcLimit = 40;
// A subidentifier below 2^32 takes at most five base-128 octets, the first of
// them at most 0x8F.
constexpr unsigned int kMaxSubidOctets = 5;
constexpr unsigned char kMaxLeadOfFive = 0x8F;

// True when every subidentifier after the first octet ends within the contents, is
// written in the fewest octets and fits in 32 bits.
bool SubidentifiersFit(const unsigned char* p, unsigned int length) {
  unsigned int i = 1;
  while (i < length) {
    const unsigned int start = i;
    if (p[start] == 0x80) return false;  // a leading zero group: not the shortest form
    while (i < length && (p[i] & 0x80)) ++i;
    if (i == length) return false;  // still open at the end
    ++i;
    const unsigned int n = i - start;
    if (n > kMaxSubidOctets || (n == kMaxSubidOctets && p[start] > kMaxLeadOfFive))
      return false;
  }
  return true;
}

// Reads one decimal component of at most ten digits, no leading zero, below 2^32;
// advances `*pos` past it.
bool ReadComponent(const char* text, std::size_t size, std::size_t* pos, uint64_t* value) {
  const std::size_t start = *pos;
  uint64_t v = 0;
  while (*pos < size && text[*pos] >= '0' && text[*pos] <= '9') {
    v = v * 10 + static_cast<unsigned int>(text[*pos] - '0');
    if (v > UINT32_MAX) return false;
    ++*pos;
  }
  const std::size_t digits = *pos - start;
  if (digits == 0 || (digits > 1 && text[start] == '0')) return false;
  *value = v;
  return true;
}

// True when `text` has the strict dotted form described in oid.h.
bool StrictDotted(const char* text, std::size_t size) {
  std::size_t pos = 0;
  unsigned int count = 0;
  uint64_t value = 0;
  for (;;) {
    if (!ReadComponent(text, size, &pos, &value)) return false;
    if (count == 0 && value >= kFirstArcLimit) return false;
    if (count == 1 && value >= kSecondArcLimit) return false;
    ++count;
    if (pos == size) return count >= 2;
    if (text[pos++] != '.') return false;
    if (pos == size) return count == 2;  // "X.Y.", the decoder's form of one octet
  }
}

}  // namespace

std::string OidText(const IdentObj& contents) {
  const unsigned int length = contents.Count();
  const unsigned char* p = contents.GetData();
  if (length == 0 || length > detail::kMaxOidContents || p[0] >= kFirstOctetLimit ||
      !SubidentifiersFit(p, length))
    return std::string();
  IdentObj text;
  if (detail::OidContentsToText(p, length, &text) != 0) return std::string();
  return std::string(reinterpret_cast<const char*>(text.GetData()), text.Count());
}

IdentObj OidContents(const char* dotted) {
  if (!dotted) return IdentObj();
  const std::size_t size = std::strlen(dotted);
  if (size > UINT32_MAX || !StrictDotted(dotted, size)) return IdentObj();
  const unsigned char* text = reinterpret_cast<const unsigned char*>(dotted);
  const unsigned int textSize = static_cast<unsigned int>(size);
  const unsigned int length = detail::OidContentsSize(text, textSize);
  if (length > detail::kMaxOidContents) return IdentObj();
  IdentObj contents;
  contents.Alloc(length);
  detail::PutOidContents(text, textSize, contents.GetData());
  return contents;
}

}  // namespace keyasn
