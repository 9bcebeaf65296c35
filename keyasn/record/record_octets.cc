#include "keyasn/record/record_octets.h"

#include <cstdint>

namespace keyasn {
namespace detail {

namespace {
constexpr unsigned int kMaxShortLength = 127;
}  // namespace

unsigned int SizeOctetsSize(unsigned int length) {
  if (length <= kMaxShortLength) return 1;
  unsigned int n = 1;
  while (n < 4 && (static_cast<uint64_t>(length) >> (8 * n)) != 0) ++n;
  return n + 1;
}

unsigned int PutSizeOctets(unsigned char* out, unsigned int length) {
  if (length <= kMaxShortLength) {
    out[0] = static_cast<unsigned char>(length);
    return 1;
  }
  const unsigned int n = SizeOctetsSize(length) - 1;
  out[0] = static_cast<unsigned char>(0x80 | n);
  for (unsigned int i = 0; i < n; ++i) {
    out[1 + i] = static_cast<unsigned char>(length >> (8 * (n - 1 - i)));
  }
  return n + 1;
}

}  // namespace detail
}  // namespace keyasn
