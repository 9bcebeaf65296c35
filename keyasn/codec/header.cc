#include "keyasn/codec/header.h"

#include <cstring>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/octets.h"

namespace {

constexpr unsigned char kClassMask = 0xC0;
constexpr unsigned char kConstructedBit = 0x20;
constexpr unsigned char kIndefiniteLength = 0x80;
constexpr unsigned int kMaxLongFormOctets = 8;

}  // namespace

int ASNTGetAsnInfo(ASNT_ASN_STRUCT_INFO& info, const unsigned char* data, unsigned int size) {
  if (!data || size < 2) return keyasn::kErrMalformed;
  info = ASNT_ASN_STRUCT_INFO{};
  info.Constructed = data[0] & kConstructedBit;
  info.Class = data[0] & kClassMask;
  unsigned int pos = 0;
  if (keyasn::detail::ReadTagNumber(data, size, &info.Tag, &pos) != keyasn::kOk) {
    info = ASNT_ASN_STRUCT_INFO{};
    return keyasn::kErrBadIdentifier;
  }
  // A multi-octet identifier may fill the whole buffer: no length octet left.
  if (pos >= size) return keyasn::kErrMalformed;
  const unsigned char first = data[pos++];
  if (first < kIndefiniteLength) {
    info.Length = first;
    info.Contents = data + pos;
    return keyasn::kOk;
  }
  if (first == kIndefiniteLength) {
    info.Contents = data + pos;
    if (info.Constructed) {
      info.Length = 0xFFFFFFFFu;
      return keyasn::kOk;
    }
    // A primitive element in the indefinite form (accepted by this library) ends
    // at the first pair of zero octets within the buffer.
    for (unsigned int i = pos; i + 1 < size; ++i) {
      if (data[i] == 0 && data[i + 1] == 0) {
        info.Length = i - pos;
        return keyasn::kOk;
      }
    }
    return keyasn::kErrMalformed;
  }
  const unsigned int count = first & 0x7Fu;
  if (count > kMaxLongFormOctets) return keyasn::kErrMalformed;
  unsigned int length = 0;
  for (unsigned int i = 0; i < count; ++i) {
    if (pos >= size) return keyasn::kErrMalformed;  // Length stays 0
    length = (length << 8) + data[pos++];  // of more than four octets the last four count
  }
  info.Length = length;
  info.Contents = data + pos;
  return keyasn::kOk;
}

IdentObj BuildTag(unsigned char tagClass, bool constructed, unsigned int tag) {
  unsigned char octets[keyasn::detail::kMaxIdentifierOctets];
  const unsigned int n = keyasn::detail::PutIdentifier(
      octets, static_cast<unsigned char>(tagClass | (constructed ? kConstructedBit : 0)), tag);
  return IdentObj(octets, n);
}

int GetTagFromEncoded(const IdentObj& encoded, IdentObj* tagOctets, short* tagClass,
                      short* constructed, unsigned int* tag) {
  const unsigned int size = encoded.Count();
  const unsigned char* data = encoded.GetData();
  if (size < 2 || !data) return keyasn::kErrMalformed;
  unsigned int number = 0;
  unsigned int end = 0;
  const int code = keyasn::detail::ReadTagNumber(data, size, &number, &end);
  if (code != keyasn::kOk) return code;
  if (tagClass) *tagClass = static_cast<short>(data[0] & kClassMask);
  if (constructed) *constructed = static_cast<short>(data[0] & kConstructedBit);
  if (tag) *tag = number;
  if (tagOctets) tagOctets->Assign(data, end);
  return keyasn::kOk;
}

int ModifyTagAtEncoded(IdentObj* encoded, const IdentObj& newTag) {
  if (!encoded) return keyasn::kErrMalformed;
  IdentObj oldTag;
  const int code = GetTagFromEncoded(*encoded, &oldTag, nullptr, nullptr, nullptr);
  if (code != keyasn::kOk) return code;
  const unsigned int tagSize = newTag.Count();
  const unsigned int restSize = encoded->Count() - oldTag.Count();
  IdentObj result;
  result.Alloc(tagSize + restSize);
  if (tagSize) std::memcpy(result.GetData(), newTag.GetData(), tagSize);
  if (restSize) std::memcpy(result.GetData() + tagSize, encoded->GetData() + oldTag.Count(), restSize);
  *encoded = std::move(result);
  return keyasn::kOk;
}
