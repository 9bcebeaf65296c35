// Small helpers shared by the key structures: building one item, taking one apart.
#ifndef KEYASN_KEYS_ITEMS_H_
#define KEYASN_KEYS_ITEMS_H_

#include <cstdint>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
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

// ForEachDefiniteItem splits the constructed element at `data` as
// ASNTGetSequence(items, data, size, err) does, calling each(item, itemSize) in
// place instead of copying the items, when that split cannot fail: the element
// and every item have a definite length, and no item reaches past `size`. It then
// returns true with `*consumed` set as ASNTGetSequence would return it; otherwise
// it returns false, after the calls for the items before the one that fails (the
// caller splits with ASNTGetSequence, which reports the failure). Pass a no-op
// `each` first to know which way to take.
template <class Each>
bool ForEachDefiniteItem(const unsigned char* data, unsigned int size, unsigned int* consumed,
                         Each each) {
  // A Length of 0xFFFFFFFF is the header parser's indefinite length.
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, data, size) != kOk || !info.Constructed ||
      info.Length == 0xFFFFFFFFu) {
    return false;
  }
  const unsigned int h = static_cast<unsigned int>(info.Contents - data);
  const uint64_t end = uint64_t{h} + info.Length;
  if (end <= h) return false;
  uint64_t offset = h;
  do {
    const unsigned int at = static_cast<unsigned int>(offset);
    if (ASNTGetAsnInfo(info, data + at, size - at) != kOk ||
        info.Length == 0xFFFFFFFFu) {
      return false;
    }
    const uint64_t itemSize = (info.Contents - (data + at)) + uint64_t{info.Length};
    if (offset + itemSize > size) return false;
    each(data + at, static_cast<unsigned int>(itemSize));
    offset += itemSize;
  } while (offset < end);
  *consumed = static_cast<unsigned int>(offset);
  return true;
}

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_KEYS_ITEMS_H_
