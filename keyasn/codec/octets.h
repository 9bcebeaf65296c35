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
unsigned int IdentifierSize(unsigned int tag);

// PutIdentifier writes the identifier octets: `first` (class and constructed bits,
// ORed in as given) OR the tag number when it is 30 or less; otherwise `first` OR
// 0x1F followed by the number in base 128, most significant group first, bit 8 set
// on every octet but the last. Returns the number of octets written.
unsigned int PutIdentifier(unsigned char* out, unsigned char first, unsigned int tag);

// LengthSize is the number of length octets PutLength writes for `length`.
unsigned int LengthSize(unsigned int length);

// PutLength writes the length octets: the long form (0x80 OR k, then k octets,
// most significant first, k minimal) when `length` is above 127 as a signed 32-bit
// number, otherwise one octet. A length of 2^31 or more is therefore written as
// one octet holding its low eight bits, kept for compatibility with existing
// encodings. Returns the number of octets written.
unsigned int PutLength(unsigned char* out, unsigned int length);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_CODEC_OCTETS_H_
