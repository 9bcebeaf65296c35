// The record model's test for one whole element in a buffer, for readers that
// need the element's place but not the record's copy of it.
#ifndef KEYASN_RECORD_WHOLE_ELEMENT_H_
#define KEYASN_RECORD_WHOLE_ELEMENT_H_

#include "keyasn/codec/header.h"

namespace keyasn {
namespace detail {

// ParseWholeElement parses the header at `data` into `header` (cleared first) and
// returns kOk when the contents are of definite length and lie within `size`, the
// header parser's code when the header does not parse, else kErrTooShort (an
// indefinite length never fits). `*headerSize` gets the header's size, 0 when it
// does not parse. CASNTBaseRecord::ReadData succeeds exactly when this does.
int ParseWholeElement(ASNT_ASN_STRUCT_INFO& header, const unsigned char* data,
                      unsigned int size, unsigned int* headerSize);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_RECORD_WHOLE_ELEMENT_H_
