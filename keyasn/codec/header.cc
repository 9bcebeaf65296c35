#include "keyasn/codec/header.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/octets.h"

namespace {

constexpr unsigned char kClassMask = 0xC0;
constexpr unsigned char kConstructedBit = 0x20;
constexpr unsigned char kIndefiniteLength = 0x80;
constexpr unsigned int kMaxLongFormOctets = 8;

inline void SetHeader(ASNT_ASN_STRUCT_INFO& info, unsigned char first, unsigned int tag,
                      unsigned int length, const unsigned char* contents) {
  // Class and Constructed are adjacent octets: one 16-bit store (little-endian).
  // first * 0x101 puts a copy of the octet in the high half, so one mask keeps the
  // class bits low and the constructed bit high.
  static_assert(offsetof(ASNT_ASN_STRUCT_INFO, Constructed) ==
                    offsetof(ASNT_ASN_STRUCT_INFO, Class) + 1,
                "Class and Constructed are adjacent");
  const uint16_t classAndConstructed = static_cast<uint16_t>(
      (first * 0x101u) & ((kConstructedBit << 8) | kClassMask));
  std::memcpy(&info.Class, &classAndConstructed, sizeof classAndConstructed);
  info.Tag = tag;
  info.Length = length;
  info.Contents = contents;
}

// The length octets from `lead` on (the long and indefinite forms); `pos` is the
// offset just behind `lead`. Kept out of line so that the common one-octet
// identifier with a short length needs no stack frame.
__attribute__((noinline)) int ParseLongLength(ASNT_ASN_STRUCT_INFO& info,
                                              const unsigned char* data, unsigned int size,
                                              unsigned int pos, unsigned char first,
                                              unsigned int tag, unsigned char lead) {
  if (lead == kIndefiniteLength) {
    if (first & kConstructedBit) {
      SetHeader(info, first, tag, 0xFFFFFFFFu, data + pos);
      return keyasn::kOk;
    }
    // A primitive element in the indefinite form (accepted by this library) ends
    // at the first pair of zero octets within the buffer.
    for (unsigned int i = pos; i + 1 < size; ++i) {
      if (data[i] == 0 && data[i + 1] == 0) {
        SetHeader(info, first, tag, i - pos, data + pos);
        return keyasn::kOk;
      }
    }
    SetHeader(info, first, tag, 0, data + pos);
    return keyasn::kErrMalformed;
  }
  const unsigned int count = lead & 0x7Fu;
  // A bad or truncated length leaves Length 0 and no contents.
  SetHeader(info, first, tag, 0, nullptr);
  if (count > kMaxLongFormOctets || count > size - pos) return keyasn::kErrMalformed;
  unsigned int length = 0;
  for (unsigned int i = 0; i < count; ++i)
    length = (length << 8) + data[pos++];  // of more than four octets the last four count
  info.Length = length;
  info.Contents = data + pos;
  return keyasn::kOk;
}

// A header whose identifier carries a high tag number (0x1F form).
__attribute__((noinline)) int ParseHighTagHeader(ASNT_ASN_STRUCT_INFO& info,
                                                 const unsigned char* data, unsigned int size) {
  const unsigned char first = data[0];
  unsigned int tag = 0;
  unsigned int pos = 1;
  if (keyasn::detail::ReadTagNumber(data, size, &tag, &pos) != keyasn::kOk) {
    info = ASNT_ASN_STRUCT_INFO{};
    return keyasn::kErrBadIdentifier;
  }
  // A multi-octet identifier may fill the whole buffer: no length octet left.
  if (pos >= size) {
    SetHeader(info, first, tag, 0, nullptr);
    return keyasn::kErrMalformed;
  }
  const unsigned char lead = data[pos++];
  if (lead < kIndefiniteLength) {
    SetHeader(info, first, tag, lead, data + pos);
    return keyasn::kOk;
  }
  return ParseLongLength(info, data, size, pos, first, tag, lead);
}

}  // namespace

int ASNTGetAsnInfo(ASNT_ASN_STRUCT_INFO& info, const unsigned char* data, unsigned int size) {
  if (size < 2 || !data) return keyasn::kErrMalformed;
  const unsigned char first = data[0];
  const unsigned char lead = data[1];
  const unsigned int tag = first & 0x1Fu;
  // The common header first: each test right behind its octet's load, so that a
  // mispredicted one is known early (one combined test on both octets measured
  // slower), and the rarer forms below reuse the octets already loaded.
  if (__builtin_expect(tag != 0x1Fu && lead < kIndefiniteLength, 1)) {
    SetHeader(info, first, tag, lead, data + 2);
    return keyasn::kOk;
  }
  if (tag == 0x1Fu) return ParseHighTagHeader(info, data, size);
  // The one- and two-octet long forms that fit the buffer, inline.
  if (lead == 0x81 && size > 2) {
    SetHeader(info, first, tag, data[2], data + 3);
    return keyasn::kOk;
  }
  if (lead == 0x82 && size > 3) {
    SetHeader(info, first, tag, (static_cast<unsigned int>(data[2]) << 8) | data[3], data + 4);
    return keyasn::kOk;
  }
  return ParseLongLength(info, data, size, 2, first, tag, lead);
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
