// Steps shared by the DerHelper encoders and decoders, and the Russian words of
// their failure texts. Internal to the library.
#ifndef KEYASN_DER_DER_COMMON_H_
#define KEYASN_DER_DER_COMMON_H_

#include "keyasn/codec/header.h"
#include "keyasn/support/ident_obj.h"

namespace keyasn {
namespace detail {

// The failure phrases, as Windows-1251 octets (the texts callers match on).
// "Неверный тип" (wrong type)
inline constexpr char kDerWrongType[] = "\xCD\xE5\xE2\xE5\xF0\xED\xFB\xE9 \xF2\xE8\xEF";
// "Значение слишком велико" (value too large)
inline constexpr char kDerValueTooLarge[] =
    "\xC7\xED\xE0\xF7\xE5\xED\xE8\xE5 \xF1\xEB\xE8\xF8\xEA\xEE\xEC \xE2\xE5\xEB\xE8\xEA\xEE";
// "Значение имеет неверный размер" (value has the wrong size)
inline constexpr char kDerValueWrongSize[] =
    "\xC7\xED\xE0\xF7\xE5\xED\xE8\xE5 \xE8\xEC\xE5\xE5\xF2 "
    "\xED\xE5\xE2\xE5\xF0\xED\xFB\xE9 \xF0\xE0\xE7\xEC\xE5\xF0";
// "Длина битовой строки слишком велика" (bit string too long)
inline constexpr char kDerBitStringTooLong[] =
    "\xC4\xEB\xE8\xED\xE0 \xE1\xE8\xF2\xEE\xE2\xEE\xE9 \xF1\xF2\xF0\xEE\xEA\xE8 "
    "\xF1\xEB\xE8\xF8\xEA\xEE\xEC \xE2\xE5\xEB\xE8\xEA\xE0";
// "Неверный размер данных" (wrong data size)
inline constexpr char kDerDataWrongSize[] =
    "\xCD\xE5\xE2\xE5\xF0\xED\xFB\xE9 \xF0\xE0\xE7\xEC\xE5\xF0 \xE4\xE0\xED\xED\xFB\xF5";

// RaiseDer throws XRUVStatus(code, place, false).
[[noreturn]] void RaiseDer(int code, const char* place);
// RaiseDer(code, place, phrase) throws XRUVStatus(code, "<place>: <phrase>", false).
[[noreturn]] void RaiseDer(int code, const char* place, const char* phrase);

// ParseDerHeader parses the header of the element held in `size` octets at `data`;
// a parser failure is raised with its code and `place`.
ASNT_ASN_STRUCT_INFO ParseDerHeader(const unsigned char* data, unsigned int size,
                                    const char* place);

// RequireDerContents raises XRUVStatus(206, place) unless the contents that `info`
// describes (parsed from `size` octets at `data`) lie within those octets; an
// indefinite length never does. The primitive decoder trusts the length, so this
// is checked before any contents are read.
void RequireDerContents(const ASNT_ASN_STRUCT_INFO& info, const unsigned char* data,
                        unsigned int size, const char* place);

// CheckDerTag raises XRUVStatus(131, "<place>: Неверный тип") unless `skip` or the
// header's tag number is `tag` or `other`.
void CheckDerTag(const ASNT_ASN_STRUCT_INFO& info, bool skip, const char* place,
                 unsigned int tag, unsigned int other);

// DecodeDerElement runs the common decoder steps on `element`: header, tag check
// (accepting `tag` or `other`), contents bound, and the primitive decoder with no
// error slot. `*info` receives the header.
IdentObj DecodeDerElement(const IdentObj& element, bool skip, const char* place,
                          unsigned int tag, unsigned int other,
                          ASNT_ASN_STRUCT_INFO* info);

// EncodeDerElement gives the encoding of a record holding `size` octets at `data`
// under the universal tag number `tag` (the record's WriteData(nullptr)).
IdentObj EncodeDerElement(unsigned int tag, const void* data, unsigned int size);

}  // namespace detail
}  // namespace keyasn

#endif  // KEYASN_DER_DER_COMMON_H_
