// Small helpers shared by the key structures: building one item, taking one apart.
#ifndef KEYASN_KEYS_ITEMS_H_
#define KEYASN_KEYS_ITEMS_H_

#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {

// RaiseStatus throws XRUVStatus(code, where, false).
[[noreturn]] void RaiseStatus(int code, const char* where);

// EncodeUniversalItem returns the element of universal `tag` whose value (in the
// encoder's memory form) is the `size` octets at `data`, as the record writer makes
// it; the writer's failures propagate as it throws them.
IdentObj EncodeUniversalItem(unsigned int tag, const void* data, unsigned int size);

// EncodeWordItem returns the INTEGER made from the four octets of `value`, least
// significant first, shortened by the encoder.
IdentObj EncodeWordItem(unsigned int value);

// BitStringContents returns the contents of a BIT STRING without unused bits that
// holds `octets`: 0x00, then the octets.
IdentObj BitStringContents(const IdentObj& octets);

// ElementFits is true when the header at `data` parses and the whole element
// (header and definite-length contents) lies within the `size` octets.
bool ElementFits(const unsigned char* data, unsigned int size);

// WordFromOctets loads up to four octets, least significant first, into `*word`;
// false (and `*word` untouched) when `value` holds more than four.
bool WordFromOctets(const IdentObj& value, unsigned int* word);

// SecureZero sets `size` octets at `data` to zero in a way the compiler keeps.
void SecureZero(void* data, unsigned int size);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_KEYS_ITEMS_H_
