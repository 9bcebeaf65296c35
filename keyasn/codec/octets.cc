#include "keyasn/codec/octets.h"

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/tags.h"

namespace keyasn {
namespace detail {

int ReadTagNumber(const unsigned char* data, unsigned int size, unsigned int* tag,
                  unsigned int* end) {
  unsigned int number = data[0] & tags::kHighTagForm;
  unsigned int pos = 1;
  if (number == tags::kHighTagForm) {
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

}  // namespace detail
}  // namespace keyasn
