// Character strings: every character within the set of its type (X.680 41),
// UTF-8, BMPString and UniversalString well formed.
#include <cstdint>

#include "lint_rules.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

bool Printable(unsigned char c) {
  if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) return true;
  switch (c) {
    case ' ': case '\'': case '(': case ')': case '+': case ',': case '-': case '.': case '/':
    case ':': case '=': case '?':
      return true;
    default:
      return false;
  }
}
bool Numeric(unsigned char c) { return (c >= '0' && c <= '9') || c == ' '; }
bool Ia5(unsigned char c) { return c < 0x80; }
bool Visible(unsigned char c) { return c >= 0x20 && c < 0x7F; }

// At names an offending octet run within the contents.
std::string At(const unsigned char* contents, std::size_t i, std::size_t n) {
  return OctetsText(contents + i, n) + " at contents octet " + std::to_string(i);
}

void CheckSet(const Checked& c, const char* rule, bool (*allowed)(unsigned char),
              Findings* findings) {
  const unsigned char* p = c.contents();
  for (std::size_t i = 0; i < c.element.length; ++i) {
    if (allowed(p[i])) continue;
    std::string shown;
    if (Visible(p[i])) shown = std::string(" ('") + static_cast<char>(p[i]) + "')";
    findings->Error(c, rule, At(p, i, 1) + shown + " is not a " + TypeName(0, c.element.tag) +
                                 " character");
    return;
  }
}

void CheckUtf8(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  for (std::size_t i = 0; i < n;) {
    const std::size_t sequence = Utf8Sequence(p + i, n - i);
    if (sequence != 0) {
      i += sequence;
      continue;
    }
    // Show the lead octet and the continuation octets that follow it.
    std::size_t run = 1;
    while (i + run < n && run < 4 && (p[i + run] & 0xC0) == 0x80) ++run;
    findings->Error(c, "string.utf8", "invalid UTF-8 (overlong, surrogate, out of range or "
                                      "truncated): " + At(p, i, run));
    return;
  }
}

void CheckBmp(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  if (n % 2 != 0) {
    findings->Error(c, "string.bmp", "odd length " + std::to_string(n) + ": BMPString has two octets per character");
    return;
  }
  for (std::size_t i = 0; i < n; i += 2) {
    const unsigned int unit = (p[i] << 8) | p[i + 1];
    if (unit < 0xD800 || unit > 0xDFFF) continue;
    const bool high = unit < 0xDC00;
    const bool paired = high && i + 3 < n && p[i + 2] >= 0xDC && p[i + 2] <= 0xDF;
    if (paired) {
      i += 2;
      continue;
    }
    findings->Error(c, "string.bmp", "unpaired surrogate " + At(p, i, 2));
    return;
  }
}

void CheckUniversal(const Checked& c, Findings* findings) {
  const unsigned char* p = c.contents();
  const std::size_t n = c.element.length;
  if (n % 4 != 0) {
    findings->Error(c, "string.universal", "length " + std::to_string(n) +
                                               " is not a multiple of 4 (four octets per character)");
    return;
  }
  for (std::size_t i = 0; i < n; i += 4) {
    const uint32_t value = (uint32_t{p[i]} << 24) | (uint32_t{p[i + 1]} << 16) |
                           (uint32_t{p[i + 2]} << 8) | p[i + 3];
    if (value > 0x10FFFF) {
      findings->Error(c, "string.universal", "character above 10FFFF: " + At(p, i, 4));
      return;
    }
  }
}

}  // namespace

void CheckString(const Checked& c, Findings* findings) {
  const Element& e = c.element;
  if (e.tag_class != 0 || e.constructed) return;
  switch (e.tag) {
    case 12: CheckUtf8(c, findings); break;
    case 18: CheckSet(c, "string.numeric", Numeric, findings); break;
    case 19: CheckSet(c, "string.printable", Printable, findings); break;
    case 22: CheckSet(c, "string.ia5", Ia5, findings); break;
    case 26: CheckSet(c, "string.visible", Visible, findings); break;
    case 28: CheckUniversal(c, findings); break;
    case 30: CheckBmp(c, findings); break;
    default: break;
  }
}

}  // namespace tool
}  // namespace keyasn
