#include "keyasn/codec/oid_text.h"

#include <cstdint>

#include "keyasn/codec/error_codes.h"

namespace keyasn {
namespace detail {

namespace {

bool IsScanSpace(unsigned char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// ScanUnsigned reads `count` characters as "%u" does on a 64-bit system: the
// number is converted as an unsigned long (saturating on overflow, a '-' negating
// it modulo 2^64) and stored into 32 bits. No digits: 0.
unsigned int ScanUnsigned(const unsigned char* p, unsigned int count) {
  // Up to nine plain digits cannot overflow: the common case, read directly.
  if (count - 1 < 9) {
    unsigned int value = 0;
    unsigned int k = 0;
    for (; k < count; ++k) {
      const unsigned int digit = static_cast<unsigned int>(p[k]) - '0';
      if (digit > 9) break;
      value = value * 10 + digit;
    }
    if (k == count) return value;
  }
  unsigned int i = 0;
  while (i < count && IsScanSpace(p[i])) ++i;
  bool negative = false;
  if (i < count && (p[i] == '+' || p[i] == '-')) negative = p[i++] == '-';
  uint64_t value = 0;
  bool overflow = false;
  for (; i < count && p[i] >= '0' && p[i] <= '9'; ++i) {
    const unsigned int digit = p[i] - '0';
    if (value > (UINT64_MAX - digit) / 10) overflow = true;
    value = value * 10 + digit;
  }
  if (overflow) return 0xFFFFFFFFu;
  if (negative) value = 0 - value;
  return static_cast<unsigned int>(value);
}

// Walks the components of a dotted text.
class ComponentWalk {
 public:
  ComponentWalk(const unsigned char* text, unsigned int size)
      : m_text(text), m_size(text ? size : 0) {}

  bool Next(unsigned int* value) {
    if (AtEnd()) return false;
    if (m_text[m_pos] == '.' && (++m_pos, AtEnd())) return false;
    const unsigned int start = m_pos;
    while (!AtEnd() && m_text[m_pos] != '.') ++m_pos;
    *value = ScanUnsigned(m_text + start, m_pos - start);
    return true;
  }

 private:
  bool AtEnd() const { return m_pos >= m_size || m_text[m_pos] == 0; }

  const unsigned char* m_text;
  unsigned int m_size;
  unsigned int m_pos = 0;
};

unsigned int Base128Size(unsigned int value) {
  unsigned int n = 1;
  while (value >>= 7) ++n;
  return n;
}

unsigned int PutBase128(unsigned char* out, unsigned int value) {
  const unsigned int n = Base128Size(value);
  for (unsigned int i = n; i-- > 0;) {
    out[i] = static_cast<unsigned char>((value & 0x7Fu) | (i == n - 1 ? 0 : 0x80));
    value >>= 7;
  }
  return n;
}

// Decimal digits of `value`, written at `out` when it is not null; returns the count.
unsigned int PutDecimal(char* out, unsigned int value) {
  char digits[10];
  unsigned int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value);
  if (out)
    for (unsigned int i = 0; i < n; ++i) out[i] = digits[n - 1 - i];
  return n;
}

// Writes (or, with a null `out`, measures) the text; false when a subidentifier
// does not end within the contents.
bool WalkContents(const unsigned char* contents, unsigned int length, char* out,
                  unsigned int* textSize) {
  unsigned int n = 0;
  const unsigned int x = contents[0] / 40;
  const unsigned int y = contents[0] - 40 * x;
  n += PutDecimal(out ? out + n : nullptr, x);
  if (out) out[n] = '.';
  ++n;
  n += PutDecimal(out ? out + n : nullptr, y);
  if (out) out[n] = '.';
  ++n;
  unsigned int i = 1;
  while (i < length) {
    unsigned int value = 0;
    unsigned char octet;
    do {
      // A subidentifier still open at the last octet: refused rather than read on.
      if (i >= length) return false;
      octet = contents[i++];
      value = (value << 7) | (octet & 0x7Fu);
    } while (octet & 0x80);
    n += PutDecimal(out ? out + n : nullptr, value);
    if (i < length) {
      if (out) out[n] = '.';
      ++n;
    }
  }
  *textSize = n;
  return true;
}

}  // namespace

unsigned int OidContentsSize(const unsigned char* text, unsigned int size) {
  ComponentWalk walk(text, size);
  unsigned int value = 0;
  unsigned int total = 0;
  for (unsigned int index = 0; walk.Next(&value); ++index) {
    if (index == 1)
      total += 1;
    else if (index > 1)
      total += Base128Size(value);
    if (total > kMaxOidContents) break;  // already refused; no need to walk further
  }
  return total;
}

unsigned int WriteOidContents(const unsigned char* text, unsigned int size, unsigned char* out,
                              unsigned int capacity) {
  ComponentWalk walk(text, size);
  unsigned int value = 0;
  unsigned int first = 0;
  unsigned int total = 0;
  for (unsigned int index = 0; walk.Next(&value); ++index) {
    if (index == 0) {
      first = 40 * value;
    } else if (index == 1) {
      if (total < capacity) out[total] = static_cast<unsigned char>(first + value);  // kept
      ++total;
    } else {
      const unsigned int n = Base128Size(value);
      if (total + n <= capacity) PutBase128(out + total, value);
      total += n;
      if (total > kMaxOidContents) break;  // refused by the caller; no need to walk on
    }
  }
  return total;
}

void PutOidContents(const unsigned char* text, unsigned int size, unsigned char* out) {
  ComponentWalk walk(text, size);
  unsigned int value = 0;
  unsigned int first = 0;
  for (unsigned int index = 0; walk.Next(&value); ++index) {
    if (index == 0) {
      first = 40 * value;
    } else if (index == 1) {
      *out++ = static_cast<unsigned char>(first + value);  // low eight bits only, kept
    } else {
      out += PutBase128(out, value);
    }
  }
}

int OidContentsToText(const unsigned char* contents, unsigned int length, IdentObj* text) {
  if (length == 0) {
    text->Empty();
    return kOk;
  }
  unsigned int textSize = 0;
  if (!WalkContents(contents, length, nullptr, &textSize)) {
    text->Empty();
    return kErrMalformed;
  }
  text->Alloc(textSize);
  WalkContents(contents, length, reinterpret_cast<char*>(text->GetData()), &textSize);
  return kOk;
}

}  // namespace detail
}  // namespace keyasn
