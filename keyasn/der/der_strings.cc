// DerHelper: character filters and the character-string encoders and decoders.
#include <cstring>
#include <string>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/tags.h"
#include "keyasn/der/der_common.h"
#include "keyasn/der/der_helper.h"

namespace {

using keyasn::detail::EncodeDerElement;
using namespace keyasn::detail::tags;

constexpr char kPrintableAlphabet[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 '()+,-./:=?";
constexpr char kNumericAlphabet[] = "0123456789 ";

// InAlphabet: NUL is never a member (memchr would find the terminator).
bool InAlphabet(const char* alphabet, std::size_t size, char c) {
  return c != '\0' && std::memchr(alphabet, c, size - 1) != nullptr;
}

IdentObj EncodeText(unsigned int tag, const std::string& text) {
  return EncodeDerElement(tag, text.data(), static_cast<unsigned int>(text.size()));
}

// EncodeLimited takes the first `maxLength` characters (all with all ones), maps
// them through `filter` and encodes them under `tag`.
IdentObj EncodeLimited(unsigned int tag, char (*filter)(char), const std::string& text,
                       unsigned long maxLength) {
  std::size_t count = text.size();
  if (maxLength != ~0UL && maxLength < count) count = maxLength;
  std::string mapped;
  mapped.reserve(count);
  for (std::size_t i = 0; i < count; ++i) mapped.push_back(filter(text[i]));
  return EncodeText(tag, mapped);
}

}  // namespace

char DerHelper::ToPrintableChar(char c) {
  return InAlphabet(kPrintableAlphabet, sizeof kPrintableAlphabet, c) ? c : '.';
}

char DerHelper::ToNumericChar(char c) {
  return InAlphabet(kNumericAlphabet, sizeof kNumericAlphabet, c) ? c : ' ';
}

char DerHelper::ToIa5Char(char c) {
  return static_cast<unsigned char>(c) <= 0x7F ? c : '.';
}

IdentObj DerHelper::EncodeStringAsUtf8(const std::wstring& text) {
  return EncodeText(kUtf8StringTag, ToString(text));
}

IdentObj DerHelper::EncodeStringAsUtf8(const std::string& text, unsigned int /*unused*/) {
  return EncodeStringAsUtf8(ToWString(text));
}

IdentObj DerHelper::EncodeStringAsPrintable(const std::string& text, unsigned long maxLength) {
  return EncodeLimited(kPrintableStringTag, &DerHelper::ToPrintableChar, text, maxLength);
}

IdentObj DerHelper::EncodeStringAsPrintable(const std::wstring& text, unsigned long maxLength) {
  return EncodeStringAsPrintable(ToString(text), maxLength);
}

IdentObj DerHelper::EncodeStringAsNumeric(const std::string& text, unsigned long maxLength) {
  // The primitive encoder has no NumericString rule: the contents are encoded as
  // an OCTET STRING's (copied as they are) and the identifier is then replaced.
  IdentObj element = EncodeLimited(kOctetStringTag, &DerHelper::ToNumericChar, text, maxLength);
  ModifyTagAtEncoded(&element, BuildTag(0x00, false, kNumericStringTag));
  return element;
}

IdentObj DerHelper::EncodeStringAsNumeric(const std::wstring& text, unsigned long maxLength) {
  return EncodeStringAsNumeric(ToString(text), maxLength);
}

IdentObj DerHelper::EncodeStringAsIa5(const std::string& text, unsigned long maxLength) {
  return EncodeLimited(kIa5StringTag, &DerHelper::ToIa5Char, text, maxLength);
}

IdentObj DerHelper::EncodeStringAsIa5(const std::wstring& text, unsigned long maxLength) {
  return EncodeStringAsIa5(ToString(text), maxLength);
}

std::wstring DerHelper::DecodeUtf8StringW(const IdentObj& element, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeUtf8String";
  const ASNT_ASN_STRUCT_INFO info =
      keyasn::detail::ParseDerHeader(element.GetData(), element.Count(), kPlace);
  if (!skipTagCheck && info.Tag != kUtf8StringTag && info.Tag != kNumericStringTag &&
      info.Tag != kPrintableStringTag && info.Tag != kIa5StringTag)
    keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace, keyasn::detail::kDerWrongType);
  keyasn::detail::RequireDerContents(info, element.GetData(), element.Count(), kPlace);
  const IdentObj value = ASNTLowDecodeData(info, info.Contents, info.Length, nullptr);
  if (value.Count() == 0) return std::wstring();
  return ToWString(std::string(reinterpret_cast<const char*>(value.GetData()), value.Count()));
}

std::string DerHelper::DecodeUtf8String(const IdentObj& element, bool skipTagCheck) {
  // Through the wide form and back, as callers have always seen it.
  return ToString(DecodeUtf8StringW(element, skipTagCheck));
}
