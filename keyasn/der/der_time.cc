// DerHelper: GeneralizedTime.
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/tags.h"
#include "keyasn/der/der_common.h"
#include "keyasn/der/der_helper.h"

namespace {

using namespace keyasn::detail::tags;

}  // namespace

IdentObj DerHelper::EncodeGeneralizedTime(const CRUVFileTime& time) {
  // The value form of a time: the FILETIME, low word first, each word least
  // significant octet first.
  const FILETIME& value = time.GetFileTime();
  unsigned char octets[8];
  for (int i = 0; i < 4; ++i) {
    octets[i] = static_cast<unsigned char>(value.dwLowDateTime >> (8 * i));
    octets[4 + i] = static_cast<unsigned char>(value.dwHighDateTime >> (8 * i));
  }
  return keyasn::detail::EncodeDerElement(kGeneralizedTimeTag, octets, sizeof octets);
}

CRUVFileTime DerHelper::DecodeGeneralizedTime(const IdentObj& element, bool skipTagCheck) {
  static const char kPlace[] = "DerHelper::DecodeGeneralizedTime";
  ASNT_ASN_STRUCT_INFO info;
  // The decoder's own verdict on the text is not asked for: a malformed time comes
  // back as the value it left (kept for compatibility).
  const IdentObj value = keyasn::detail::DecodeDerElement(
      element, skipTagCheck, kPlace, kGeneralizedTimeTag, kGeneralizedTimeTag, &info);
  if (value.Count() != 8)
    keyasn::detail::RaiseDer(keyasn::kErrWrongType, kPlace, keyasn::detail::kDerDataWrongSize);
  const unsigned char* octets = value.GetData();
  FILETIME result{0, 0};
  for (int i = 0; i < 4; ++i) {
    result.dwLowDateTime |= static_cast<uint32_t>(octets[i]) << (8 * i);
    result.dwHighDateTime |= static_cast<uint32_t>(octets[4 + i]) << (8 * i);
  }
  return CRUVFileTime(result);
}
