// Length octets as the record model writes them, built in local storage (no
// allocation).
#ifndef KEYASN_RECORD_RECORD_OCTETS_H_
#define KEYASN_RECORD_RECORD_OCTETS_H_

namespace keyasn {
namespace detail {

// The most length octets (0x84 + four octets) the record model writes. Identifier
// octets are written with PutIdentifier (keyasn/codec/octets.h).
constexpr unsigned int kMaxSizeOctets = 5;

// PutSizeOctets writes the definite-form length octets: one octet up to 127, else
// 0x80 OR n followed by the n (1 to 4) octets of `length`, most significant first.
// Unlike the encoder's PutLength it takes the long form for 2^31 and above too.
unsigned int PutSizeOctets(unsigned char* out, unsigned int length);
// SizeOctetsSize is what PutSizeOctets writes for `length`.
unsigned int SizeOctetsSize(unsigned int length);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_RECORD_RECORD_OCTETS_H_
