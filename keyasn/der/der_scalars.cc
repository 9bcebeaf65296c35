// DerHelper: integers, booleans, object identifiers, octet and bit strings, tags.
#include <cstring>
#include <string>
#include <vector>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/tags.h"
#include "keyasn/der/der_common.h"
#include "keyasn/der/der_helper.h"

namespace {

using keyasn::detail::DecodeDerElement;
using keyasn::detail::EncodeDerElement;
using namespace keyasn::detail::tags;

// The library's own mark of a negative INTEGER (kept for compatibility with
// existing encodings).
constexpr unsigned int kNegativeInteger = 258;

// LowOrderWord places `count` (at most 4) octets, the first lowest, into a 32-bit
// value whose other octets are zero. No sign extension, on purpose.
unsigned int LowOrderWord(const unsigned char* octets, unsigned int count) {
  unsigned int value = 0;
  for (unsigned int i = 0; i < count; ++i) value |= static_cast<unsigned int>(octets[i]) << (8 * i);
  return value;
}

}  // namespace

IdentObj DerHelper::EncodeInteger(int value) {
  const unsigned int word = static_cast<unsigned int>(value);
  const unsigned char octets[4] = {
      static_cast<unsigned char>(word), static_cast<unsigned char>(word >> 8),
      static_cast<unsigned char>(word >> 16), static_cast<unsigned char>(word >> 24)};
  // A negative value gets the negative mark, which the encoder has no rule for:
  // no INTEGER comes out (deliberate, see the header).
  return EncodeDerElement(value < 0 ? kNegativeInteger : kIntegerTag, octets, sizeof octets);
}

IdentObj DerHelper::EncodeInteger(const IdentObj& value) {
  return EncodeDerElement(kIntegerTag, value.GetData(), value.Count());
}

IdentObj DerHelper::EncodeBool(bool value) {
  const unsigned char octet = value ? 1 : 0;
  return EncodeDerElement(kBooleanTag, &octet, 1);
}

IdentObj DerHelper::EncodeOid(const std::string& oid) {
  return EncodeDerElement(kObjectIdTag, oid.data(), static_cast<unsigned int>(oid.size()));
}

IdentObj DerHelper::EncodeOctetString(const unsigned char* data, unsigned int size) {
  return EncodeDerElement(kOctetStringTag, data, size);
}

IdentObj DerHelper::EncodeOctetString(const IdentObj& value) {
  return EncodeDerElement(kOctetStringTag, value.GetData(), value.Count());
}

IdentObj DerHelper::EncodeBitString(const void* data, int size) {
  const unsigned int count = size > 0 ? static_cast<unsigned int>(size) : 0;
  IdentObj contents(nullptr, count + 1);  // zero-filled: unused-bits octet 0x00
  if (data != nullptr && count != 0) std::memcpy(contents.GetData() + 1, data, count);
  return EncodeDerElement(kBitStringTag, contents.GetData(), contents.Count());
}

IdentObj DerHelper::DecodeLargeInteger(const IdentObj& element, bool skipTagCheck) {
  ASNT_ASN_STRUCT_INFO info;
  return DecodeDerElement(element, skipTagCheck, "DerHelper::DecodeLargeInteger", kIntegerTag,
                          kNegativeInteger, &info);
}

int DerHelper::DecodeInteger(const IdentObj& element, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeInteger";
  const unsigned char* data = element.GetData();
  const unsigned int size = element.Count();
  const ASNT_ASN_STRUCT_INFO header = keyasn::detail::ParseDerHeader(data, size, kPlace);
  keyasn::detail::CheckDerTag(header, skipTagCheck, kPlace, kIntegerTag, kNegativeInteger);
  keyasn::detail::RequireDerContents(header, data, size, kPlace);
  if (header.Class != kContextClass && header.Tag == kIntegerTag) {
    // What the primitive decoder gives for a universal INTEGER (one leading 0x00
    // dropped, then the octets reversed), read straight from the contents.
    const unsigned char* p = header.Contents;
    unsigned int n = header.Length;
    if (n >= 2 && p[0] == 0x00) {
      ++p;
      --n;
    }
    if (n > 4)
      keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace, keyasn::detail::kDerValueTooLarge);
    unsigned int word = 0;
    for (unsigned int i = 0; i < n; ++i) word = (word << 8) | p[i];
    return static_cast<int>(word);
  }
  ASNT_ASN_STRUCT_INFO info;
  const IdentObj value =
      DecodeDerElement(element, skipTagCheck, kPlace, kIntegerTag, kNegativeInteger, &info);
  if (value.Count() > 4)
    keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace, keyasn::detail::kDerValueTooLarge);
  unsigned int word = LowOrderWord(value.GetData(), value.Count());
  // The negative mark is honoured even when the tag check was skipped.
  if (info.Tag == kNegativeInteger) word = 0u - word;
  return static_cast<int>(word);
}

bool DerHelper::DecodeBool(const IdentObj& element, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeBool";
  ASNT_ASN_STRUCT_INFO info;
  const IdentObj value = DecodeDerElement(element, skipTagCheck, kPlace, kBooleanTag, kBooleanTag, &info);
  if (value.Count() != 4)
    keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace, keyasn::detail::kDerValueWrongSize);
  return LowOrderWord(value.GetData(), 4) != 0;
}

std::string DerHelper::DecodeOid(const IdentObj& element, bool skipTagCheck) {
  ASNT_ASN_STRUCT_INFO info;
  const IdentObj value = DecodeDerElement(element, skipTagCheck, "DerHelper::DecodeOid",
                                          kObjectIdTag, kObjectIdTag, &info);
  if (value.Count() == 0) return std::string();
  return std::string(reinterpret_cast<const char*>(value.GetData()), value.Count());
}

IdentObj DerHelper::DecodeOctetString(const IdentObj& element, bool skipTagCheck) {
  ASNT_ASN_STRUCT_INFO info;
  return DecodeDerElement(element, skipTagCheck, "DerHelper::DecodeOctetString",
                          kOctetStringTag, kOctetStringTag, &info);
}

std::vector<unsigned char> DerHelper::DecodeOctetString(const unsigned char* data,
                                                        unsigned int size, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeOctetString";
  const ASNT_ASN_STRUCT_INFO info = keyasn::detail::ParseDerHeader(data, size, kPlace);
  keyasn::detail::CheckDerTag(info, skipTagCheck, kPlace, kOctetStringTag, kOctetStringTag);
  keyasn::detail::RequireDerContents(info, data, size, kPlace);
  // The contents are copied as they stand, without the primitive decoder.
  return std::vector<unsigned char>(info.Contents, info.Contents + info.Length);
}

unsigned int DerHelper::DecodeBitStringAsInt(const IdentObj& element, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeBitStringAsInt";
  ASNT_ASN_STRUCT_INFO info;
  const IdentObj value =
      DecodeDerElement(element, skipTagCheck, kPlace, kBitStringTag, kBitStringTag, &info);
  if (value.Count() > 4)
    keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace,
                             keyasn::detail::kDerBitStringTooLong);
  // The unused-bits octet stays in the lowest-order position (kept for
  // compatibility with existing callers).
  return LowOrderWord(value.GetData(), value.Count());
}

unsigned int DerHelper::GetTag(const IdentObj& element) {
  return keyasn::detail::ParseDerHeader(element.GetData(), element.Count(), "DerHelper::GetTag")
      .Tag;
}

bool DerHelper::IsUniversalTag(const IdentObj& element) {
  // Shares GetTag's place text on purpose.
  return keyasn::detail::ParseDerHeader(element.GetData(), element.Count(), "DerHelper::GetTag")
             .Class == 0;
}
