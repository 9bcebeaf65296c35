#include "value_encode.h"

#include <cstdint>
#include <vector>

#include "keyasn/codec/oid.h"

#include "dump.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

bool IntegerContents(const std::string& text, Bytes* out) {
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    return ParseHex(text.substr(2), out) && !out->empty();
  }
  std::size_t i = text.size() > 0 && text[0] == '-' ? 1 : 0;
  if (i == text.size()) return false;
  uint64_t magnitude = 0;
  for (; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    const uint64_t digit = static_cast<uint64_t>(text[i] - '0');
    if (magnitude > (UINT64_MAX - digit) / 10) return false;
    magnitude = magnitude * 10 + digit;
  }
  const bool negative = text[0] == '-';
  if (negative ? magnitude > (uint64_t{1} << 63) : magnitude > INT64_MAX) return false;
  const uint64_t value = negative ? ~magnitude + 1 : magnitude;
  // Two's complement in the fewest octets: drop leading octets that only repeat the sign.
  Bytes octets;
  for (int shift = 56; shift >= 0; shift -= 8) octets.push_back(static_cast<unsigned char>(value >> shift));
  std::size_t skip = 0;
  while (skip + 1 < octets.size() &&
         ((octets[skip] == 0x00 && (octets[skip + 1] & 0x80) == 0) ||
          (octets[skip] == 0xFF && (octets[skip + 1] & 0x80) != 0))) {
    ++skip;
  }
  out->assign(octets.begin() + static_cast<std::ptrdiff_t>(skip), octets.end());
  return true;
}

// TimeContents turns dump's ISO form back into UTCTime or GeneralizedTime text:
// "2024-01-01T00:00:00Z" becomes "240101000000Z" or "20240101000000Z"; a
// fraction is kept, and so is the absence of a zone.
bool TimeContents(const std::string& iso, bool generalized, Bytes* out) {
  std::string digits, rest;
  std::size_t i = 0;
  const char* layout = "dddd-dd-ddTdd:dd:dd";
  for (const char* l = layout; *l != '\0'; ++l, ++i) {
    if (i >= iso.size()) return false;
    if (*l == 'd') {
      if (iso[i] < '0' || iso[i] > '9') return false;
      digits += iso[i];
    } else if (iso[i] != *l) {
      return false;
    }
  }
  rest = iso.substr(i);
  if (!generalized) {
    const bool century = digits.compare(0, 2, "19") == 0 || digits.compare(0, 2, "20") == 0;
    if (rest != "Z" || !century) return false;
    digits.erase(0, 2);
  }
  const std::string text = digits + rest;
  out->assign(text.begin(), text.end());
  return true;
}

// CodePoints reads UTF-8 text; false when it is not valid UTF-8.
bool CodePoints(const std::string& text, std::vector<uint32_t>* points) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text.data());
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t n = Utf8Sequence(p + i, text.size() - i);
    if (n == 0) return false;
    uint32_t c = n == 1 ? p[i] : n == 2 ? p[i] & 0x1Fu : n == 3 ? p[i] & 0x0Fu : p[i] & 0x07u;
    for (std::size_t k = 1; k < n; ++k) c = (c << 6) | (p[i + k] & 0x3Fu);
    points->push_back(c);
    i += n;
  }
  return true;
}

}  // namespace

bool Utf8ToUtf16(const std::string& text, Bytes* out) {
  std::vector<uint32_t> points;
  if (!CodePoints(text, &points)) return false;
  for (uint32_t c : points) {
    if (c >= 0x10000) {
      const uint32_t v = c - 0x10000;
      const uint32_t high = 0xD800 + (v >> 10), low = 0xDC00 + (v & 0x3FF);
      for (uint32_t unit : {high, low}) {
        out->push_back(static_cast<unsigned char>(unit >> 8));
        out->push_back(static_cast<unsigned char>(unit));
      }
    } else {
      out->push_back(static_cast<unsigned char>(c >> 8));
      out->push_back(static_cast<unsigned char>(c));
    }
  }
  return true;
}

bool Utf8ToUtf32(const std::string& text, Bytes* out) {
  std::vector<uint32_t> points;
  if (!CodePoints(text, &points)) return false;
  for (uint32_t c : points) {
    for (int shift = 24; shift >= 0; shift -= 8) out->push_back(static_cast<unsigned char>(c >> shift));
  }
  return true;
}

bool ValueContents(unsigned int tag, const std::string& text, Bytes* contents, std::string* problem) {
  Bytes out;
  bool ok = true;
  switch (tag) {
    case 1:
      ok = text == "TRUE" || text == "FALSE";
      if (ok) out.push_back(text == "TRUE" ? 0xFF : 0x00);
      *problem = "expected TRUE or FALSE";
      break;
    case 2:
    case 10:
      ok = IntegerContents(text, &out);
      *problem = "expected a decimal integer of at most 64 bits, or 0x and hex digits";
      break;
    case 6:
      {
        const IdentObj octets = keyasn::OidContents(text.c_str());
        ok = octets.Count() != 0;
        out.assign(octets.GetData(), octets.GetData() + octets.Count());
      }
      *problem = "expected a dotted object identifier";
      break;
    case 23:
    case 24:
      if (!TimeContents(text, tag == 24, &out)) out.assign(text.begin(), text.end());
      break;
    case 28:
      ok = Utf8ToUtf32(text, &out);
      *problem = "expected UTF-8 text";
      break;
    case 30:
      ok = Utf8ToUtf16(text, &out);
      *problem = "expected UTF-8 text";
      break;
    default:
      if (IsStringType(tag)) {
        out.assign(text.begin(), text.end());
      } else {
        ok = ParseHex(text, &out);
        *problem = "expected hex digits";
      }
      break;
  }
  if (!ok) return false;
  problem->clear();
  contents->swap(out);
  return true;
}

}  // namespace tool
}  // namespace keyasn
