#include "keyasn/codec/octets.h"

#include "keyasn/codec/error_codes.h"

namespace keyasn {
namespace detail {

namespace {
constexpr unsigned int kHighTagForm = 0x1F;
constexpr unsigned int kLastShortTag = 30;
}  // namespace

int ReadTagNumber(const unsigned char* data, unsigned int size, unsigned int* tag,
                  unsigned int* end) {
  unsigned int number = data[0] & kHighTagForm;
  unsigned int pos = 1;
  if (number == kHighTagForm) {
    number = 0;
    for (;;) {
      if (pos >= size) return kErrBadIdentifier;  // still inside the high tag form
      const unsigned char octet = data[pos++];
      number = (number << 7) + (octet & 0x7Fu);
      if (!(octet & 0x80)) break;
    }
  }
  *tag = number;
  *end = pos;
  return kOk;
}

unsigned int IdentifierSize(unsigned int tag) {
  if (tag <= kLastShortTag) return 1;
  unsigned int groups = 1;
  while (tag >>= 7) ++groups;
  return 1 + groups;
}

unsigned int PutIdentifier(unsigned char* out, unsigned char first, unsigned int tag) {
  if (tag <= kLastShortTag) {
    out[0] = static_cast<unsigned char>(first | tag);
    return 1;
  }
  const unsigned int n = IdentifierSize(tag);
  out[0] = static_cast<unsigned char>(first | kHighTagForm);
  for (unsigned int i = n - 1; i >= 1; --i) {
    out[i] = static_cast<unsigned char>((tag & 0x7Fu) | (i == n - 1 ? 0 : 0x80));
    tag >>= 7;
  }
  return n;
}

unsigned int LengthSize(unsigned int length) {
  if (static_cast<int>(length) <= 127) return 1;
  unsigned int k = 1;
  while (k < 4 && (length >> (8 * k))) ++k;
  return 1 + k;
}

unsigned int PutLength(unsigned char* out, unsigned int length) {
  const unsigned int n = LengthSize(length);
  if (n == 1) {
    out[0] = static_cast<unsigned char>(length);
    return 1;
  }
  out[0] = static_cast<unsigned char>(0x80 | (n - 1));
  for (unsigned int i = n - 1; i >= 1; --i) {
    out[i] = static_cast<unsigned char>(length);
    length >>= 8;
  }
  return n;
}

}  // namespace detail
}  // namespace keyasn
