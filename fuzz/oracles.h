// Small reference computations the fuzz targets compare the library with.
#ifndef KEYASN_FUZZ_ORACLES_H_
#define KEYASN_FUZZ_ORACLES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace keyasn_fuzz {

// OidText: the dotted text the decoder makes of object identifier contents (the
// first octet as b / 40 "." b % 40 ".", further subidentifiers accumulated in 32
// bits, "." only when octets remain); false when the last one does not end.
bool OidText(const uint8_t* contents, size_t length, std::string* text);

// IntegerValue: the decoder's INTEGER form (least significant octet first, one
// leading 0x00 dropped when there are at least two octets).
std::vector<uint8_t> IntegerValue(const uint8_t* contents, size_t length);

// MinimalInteger: the contents octets (most significant first) that the encoder
// writes for a value given least significant octet first.
std::vector<uint8_t> MinimalInteger(const std::vector<uint8_t>& value);

// FileTime64: eight octets of a file time (low word first, least significant
// octet first) as a number.
uint64_t FileTime64(const uint8_t* octets);

}  // namespace keyasn_fuzz

#endif  // KEYASN_FUZZ_ORACLES_H_
