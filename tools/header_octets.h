// The identifier and length octets of an element in their shortest form, to tell
// when an input used a longer one and to write elements built from JSON.
#ifndef KEYASN_TOOLS_HEADER_OCTETS_H_
#define KEYASN_TOOLS_HEADER_OCTETS_H_

#include <cstddef>

#include "common.h"

namespace keyasn {
namespace tool {

// MinimalHeader writes the identifier octets of (class, constructed, tag), then
// the length: 0x80 when `indefinite`, otherwise the fewest octets for `length`.
Bytes MinimalHeader(unsigned char tag_class, bool constructed, unsigned int tag, bool indefinite,
                    std::size_t length);

// The most octets a header takes: a tag number of 32 bits and a length of 64.
constexpr std::size_t kMaxHeader = 16;

// MinimalHeader into `out` (kMaxHeader octets of room), for the dump's every
// element: returns how many octets it wrote.
std::size_t MinimalHeader(unsigned char tag_class, bool constructed, unsigned int tag,
                          bool indefinite, std::size_t length, unsigned char* out);

// HeaderFields is what identifier and length octets say.
struct HeaderFields {
  unsigned char tag_class = 0;
  bool constructed = false;
  unsigned int tag = 0;
  bool indefinite = false;
  std::size_t length = 0;
};

// ParseHeader reads header octets in any BER form (high tag numbers with leading
// 0x80 groups, lengths with leading zero octets); false unless `header` is
// exactly one identifier and one length.
bool ParseHeader(const Bytes& header, HeaderFields* fields);

}  // namespace tool
}  // namespace keyasn

#endif  // KEYASN_TOOLS_HEADER_OCTETS_H_
