// Identifier and length octets: the bounded readers and the writers shared by the
// header functions and the encoder.
#ifndef KEYASN_CODEC_OCTETS_H_
#define KEYASN_CODEC_OCTETS_H_

namespace keyasn {
namespace detail {

// The most octets PutIdentifier writes (first octet + five base-128 groups) and
// PutLength writes (0x84 + four octets).
constexpr unsigned int kMaxIdentifierOctets = 6;
constexpr unsigned int kMaxLengthOctets = 5;

// ReadTagNumber reads the tag number of the identifier at `data` (`size` >= 1).
// On success it returns 0, stores the number in `*tag` and the offset just behind
// the identifier octets in `*end`. A high tag number form that does not end
// before `size` gives 205 (nothing stored). No octet at or past `size` is read.
// The number is accumulated in 32 bits without an overflow or minimality check.
int ReadTagNumber(const unsigned char* data, unsigned int size, unsigned int* tag,
                  unsigned int* end);

// IdentifierSize is the number of identifier octets PutIdentifier writes for `tag`.
inline unsigned int IdentifierSize(unsigned int tag) {
  if (tag <= 30) return 1;
  unsigned int groups = 1;
  while (tag >>= 7) ++groups;
  return 1 + groups;
}

// PutIdentifier writes the identifier octets: `first` (class and constructed bits,
// ORed in as given) OR the tag number when it is 30 or less; otherwise `first` OR
// 0x1F followed by the number in base 128, most significant group first, bit 8 set
// on every octet but the last. Returns the number of octets written.
inline unsigned int PutIdentifier(unsigned char* out, unsigned char first, unsigned int tag) {
  if (tag <= 30) {
    out[0] = static_cast<unsigned char>(first | tag);
    return 1;
  }
  const unsigned int n = IdentifierSize(tag);
  out[0] = static_cast<unsigned char>(first | 0x1F);
  for (unsigned int i = n - 1; i >= 1; --i) {
    out[i] = static_cast<unsigned char>((tag & 0x7Fu) | (i == n - 1 ? 0 : 0x80));
    tag >>= 7;
  }
  return n;
}

// LengthSize is the number of length octets PutLength writes for `length`.
inline unsigned int LengthSize(unsigned int length) {
  if (static_cast<int>(length) <= 127) return 1;
  unsigned int k = 1;
  while (k < 4 && (length >> (8 * k))) ++k;
  return 1 + k;
}

// PutLength writes the length octets: the long form (0x80 OR k, then k octets,
// most significant first, k minimal) when `length` is above 127 as a signed 32-bit
// number, otherwise one octet. A length of 2^31 or more is therefore written as
// one octet holding its low eight bits, kept for compatibility with existing
// encodings. Returns the number of octets written.
inline unsigned int PutLength(unsigned char* out, unsigned int length) {
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

// IntegerContentsSize is the number of INTEGER contents octets the encoder writes
// for the `n` octets at `le` (least significant first; a null `le` reads as
// zeros): redundant high-order 0x00 and 0xFF octets are dropped, the value is
// never widened.
inline unsigned int IntegerContentsSize(const unsigned char* le, unsigned int n) {
  while (n >= 2) {
    const unsigned char top = le ? le[n - 1] : 0;
    const unsigned char next = le ? le[n - 2] : 0;
    if ((top == 0x00 && !(next & 0x80)) || (top == 0xFF && (next & 0x80)))
      --n;
    else
      break;
  }
  return n;
}

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_CODEC_OCTETS_H_
