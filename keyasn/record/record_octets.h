// Identifier and length octets as the record model writes them, built in local
// storage (no allocation).
#ifndef KEYASN_RECORD_RECORD_OCTETS_H_
#define KEYASN_RECORD_RECORD_OCTETS_H_

namespace keyasn {
namespace detail {

// The most identifier octets (first octet + five base-128 groups) and length
// octets (0x84 + four octets) the record model writes.
constexpr unsigned int kMaxTagOctets = 6;
constexpr unsigned int kMaxSizeOctets = 5;

// PutTagOctets writes `first` (class OR constructed octet) OR the tag number when
// it is 30 or less, else `first` OR 0x1F followed by the number in base 128, most
// significant group first, bit 8 set on every octet but the last. Returns the
// number of octets written.
unsigned int PutTagOctets(unsigned char* out, unsigned char first, unsigned int tag);
// TagOctetsSize is what PutTagOctets writes for `tag`.
unsigned int TagOctetsSize(unsigned int tag);

// PutSizeOctets writes the definite-form length octets: one octet up to 127, else
// 0x80 OR n followed by the n (1 to 4) octets of `length`, most significant first.
unsigned int PutSizeOctets(unsigned char* out, unsigned int length);
// SizeOctetsSize is what PutSizeOctets writes for `length`.
unsigned int SizeOctetsSize(unsigned int length);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_RECORD_RECORD_OCTETS_H_
