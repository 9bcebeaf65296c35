/// @file
/// DerHelper: one typed value to one complete DER element and back.
#ifndef KEYASN_DER_DER_HELPER_H_
#define KEYASN_DER_DER_HELPER_H_

#include <string>
#include <vector>

#include "keyasn/support/export.h"
#include "keyasn/support/file_time.h"
#include "keyasn/support/ident_obj.h"

/// DerHelper is a set of stateless functions. Every encoder hands the value bytes to
/// a CASNTBaseRecord under a universal tag number and returns its encoding (the
/// record's WriteData(nullptr)); a failure of that writer reaches the caller as the
/// record raises it (XRUVStatus with "CASNTBaseRecord::WriteData"). Every decoder
/// parses the element's header, checks its tag number (unless `skipTagCheck`; the
/// class is never checked) and converts the contents with the primitive decoder,
/// given no error slot. Every failure is raised as XRUVStatus(code, place, false);
/// the Russian words of the place texts are Windows-1251 octets.
///
/// Decoders raise XRUVStatus(206, <header place>) when the element's contents
/// (indefinite-length contents included) do not lie within the element buffer:
/// nothing is read beyond the buffer given.
///
/// Narrow strings are multibyte text in the encoding of the current LC_CTYPE
/// locale. The library never sets the locale: it converts with whatever the
/// calling program selected.
class KEYASN_API DerHelper {
 public:
  // --- Integers, booleans, object identifiers, octet and bit strings ---

  /// EncodeInteger(value) gives the minimal INTEGER (tag 2) for value >= 0.
  /// A negative value is given tag number 258, the library's negative-INTEGER mark,
  /// for which the primitive encoder has no rule: the record's encoding is empty,
  /// and the record's writer, handed that empty (null) buffer, raises
  /// XRUVStatus(37, "CASNTBaseRecord::WriteData"). No INTEGER is produced for a
  /// negative value; this is deliberate and pairs with the decoders' handling of
  /// tag 258.
  static IdentObj EncodeInteger(int value);
  /// EncodeInteger(value) encodes the octets of `value`, least significant first,
  /// as a two's-complement INTEGER: the high bit of the last octet is the sign.
  static IdentObj EncodeInteger(const IdentObj& value);
  /// EncodeBool gives 01 01 FF for true, 01 01 00 for false.
  static IdentObj EncodeBool(bool value);
  /// EncodeOid encodes the dotted decimal text `oid` as an OBJECT IDENTIFIER.
  static IdentObj EncodeOid(const std::string& oid);
  /// EncodeOctetString encodes the `size` octets at `data` (zeros when `data` is
  /// null) as an OCTET STRING.
  static IdentObj EncodeOctetString(const unsigned char* data, unsigned int size);
  /// EncodeOctetString encodes the octets of `value` as an OCTET STRING.
  static IdentObj EncodeOctetString(const IdentObj& value);
  /// EncodeBitString encodes the `size` octets at `data` as a BIT STRING with no
  /// unused bits (a leading 0x00 octet). A size below 0 counts as 0; a null `data`
  /// gives zero octets.
  static IdentObj EncodeBitString(const void* data, int size);

  /// DecodeLargeInteger returns the INTEGER's octets, least significant first, as
  /// the primitive decoder gives them. Tag 2 or 258.
  static IdentObj DecodeLargeInteger(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeInteger returns the decoded octets (at most 4, else 131) placed in the
  /// low-order octets of a 32-bit value, without sign extension (02 01 FF is 255);
  /// negated when the element's tag number is 258, whether or not `skipTagCheck`.
  /// Tag 2 or 258.
  static int DecodeInteger(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeBool is true when the decoded 4-octet value is non-zero; a decoded value
  /// of another size raises 131. Tag 1.
  static bool DecodeBool(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeOid returns the dotted decimal text. Tag 6.
  static std::string DecodeOid(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeOctetString returns the decoded contents. Tag 4.
  static IdentObj DecodeOctetString(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeOctetString(data, size) returns a copy of the contents octets of the
  /// element held in the `size` octets at `data`, without the primitive decoder.
  static std::vector<unsigned char> DecodeOctetString(const unsigned char* data,
                                                      unsigned int size,
                                                      bool skipTagCheck = false);
  /// DecodeBitStringAsInt returns the whole contents, the unused-bits octet included
  /// (kept in the lowest-order octet on purpose), in the low-order octets of a 32-bit
  /// value; more than 4 octets raise 131. Tag 3.
  static unsigned int DecodeBitStringAsInt(const IdentObj& element,
                                           bool skipTagCheck = false);

  /// GetTag returns the tag number of the element's header.
  static unsigned int GetTag(const IdentObj& element);
  /// IsUniversalTag is true when the element's class is universal. A header parse
  /// failure carries the place text "DerHelper::GetTag" (deliberately shared).
  static bool IsUniversalTag(const IdentObj& element);

  // --- Character filters ---

  /// ToPrintableChar keeps letters, digits, space and '()+,-./:=? (the
  /// PrintableString alphabet) and turns every other character into '.'.
  static char ToPrintableChar(char c);
  /// ToNumericChar keeps '0'..'9' and space and turns every other character into a
  /// space.
  static char ToNumericChar(char c);
  /// ToIa5Char keeps octets up to 0x7F and turns every other octet into '.'.
  static char ToIa5Char(char c);

  // --- Wide and multibyte text ---

  /// ToString converts wide text to multibyte text in the current locale
  /// (wcsrtombs). Raises XRUVStatus(errno, "DerHelper::ToString wcsrtombs(1)") for a
  /// character the locale cannot represent.
  static std::string ToString(const std::wstring& text);
  /// ToWString converts multibyte text in the current locale to wide text
  /// (mbsrtowcs). Raises XRUVStatus(errno, "DerHelper::ToWString mbsrtowcs(1)") for
  /// text that is not valid in the locale.
  static std::wstring ToWString(const std::string& text);

  // --- Character strings ---

  /// EncodeStringAsUtf8 encodes ToString(text) as a UTF8String (tag 12); the octets
  /// are UTF-8 when the current locale's encoding is.
  static IdentObj EncodeStringAsUtf8(const std::wstring& text);
  /// EncodeStringAsUtf8(text, n) is EncodeStringAsUtf8(ToWString(text)); `n` is
  /// accepted and ignored.
  static IdentObj EncodeStringAsUtf8(const std::string& text, unsigned int unused);

  // The length-limited encoders take the first `maxLength` characters of `text`
  // (all of them when `maxLength` is all ones), pass each through the type's
  // filter and encode the result. The wide forms apply `maxLength` to the
  // multibyte form: a non-ASCII character counts as several units and each of its
  // octets is filtered on its own.

  /// EncodeStringAsPrintable gives a PrintableString (tag 19), ToPrintableChar.
  static IdentObj EncodeStringAsPrintable(const std::string& text,
                                          unsigned long maxLength = ~0UL);
  /// EncodeStringAsPrintable of wide text, converted to multibyte first.
  static IdentObj EncodeStringAsPrintable(const std::wstring& text,
                                          unsigned long maxLength = ~0UL);
  /// EncodeStringAsNumeric gives a NumericString (tag 18), ToNumericChar.
  static IdentObj EncodeStringAsNumeric(const std::string& text,
                                        unsigned long maxLength = ~0UL);
  /// EncodeStringAsNumeric of wide text, converted to multibyte first.
  static IdentObj EncodeStringAsNumeric(const std::wstring& text,
                                        unsigned long maxLength = ~0UL);
  /// EncodeStringAsIa5 gives an IA5String (tag 22), ToIa5Char.
  static IdentObj EncodeStringAsIa5(const std::string& text, unsigned long maxLength = ~0UL);
  /// EncodeStringAsIa5 of wide text, converted to multibyte first.
  static IdentObj EncodeStringAsIa5(const std::wstring& text,
                                    unsigned long maxLength = ~0UL);

  /// DecodeUtf8StringW returns ToWString of the decoded contents. Tag 12, 18, 19 or
  /// 22. A NumericString (18) decodes to an empty string: the primitive decoder has
  /// no rule for it (kept so deliberately).
  static std::wstring DecodeUtf8StringW(const IdentObj& element, bool skipTagCheck = false);
  /// DecodeUtf8String returns ToString(DecodeUtf8StringW(element, skipTagCheck)).
  static std::string DecodeUtf8String(const IdentObj& element, bool skipTagCheck = false);

  // --- Time ---

  /// EncodeGeneralizedTime encodes the time as YYYYMMDDhhmmssZ (tag 24);
  /// milliseconds are dropped.
  static IdentObj EncodeGeneralizedTime(const CRUVFileTime& time);
  /// DecodeGeneralizedTime returns the decoded time. Tag 24. A decoded value that is
  /// not 8 octets raises 131. A malformed time text is not reported: it yields the
  /// value the primitive decoder left (the zero time when it rejects the text before
  /// filling anything in); kept for compatibility.
  static CRUVFileTime DecodeGeneralizedTime(const IdentObj& element,
                                            bool skipTagCheck = false);
};

#endif  // KEYASN_DER_DER_HELPER_H_
