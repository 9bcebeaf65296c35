// Element header parsing and the identifier-octet functions: ASNTGetAsnInfo,
// GetTagFromEncoded, ModifyTagAtEncoded and BuildTag.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "keyasn/codec/header.h"

namespace {

using keyasn_fuzz::Input;

bool Cleared(const ASNT_ASN_STRUCT_INFO& info) {
  return info.Class == 0 && info.Constructed == 0 && info.Tag == 0 && info.Length == 0 &&
         info.Contents == nullptr;
}

// The parse of `data` agrees with what the octets say.
void CheckParse(const uint8_t* data, size_t size) {
  ASNT_ASN_STRUCT_INFO info;
  std::memset(&info, 0xA5, sizeof info);
  ASNT_ASN_STRUCT_INFO before;
  std::memcpy(&before, &info, sizeof info);
  const unsigned int n = keyasn_fuzz::Size32(size);
  const int code = ASNTGetAsnInfo(info, data, n);
  KEYASN_FUZZ_CHECK(code == 0 || code == 205 || code == 206);
  if (!data || size < 2) {
    KEYASN_FUZZ_CHECK(code == 206);
    KEYASN_FUZZ_CHECK(std::memcmp(&info, &before, sizeof info) == 0);
  }
  if (code == 205) KEYASN_FUZZ_CHECK(Cleared(info));

  // The identifier as GetTagFromEncoded reads it (the same bound rule).
  IdentObj encoded(data, n);
  IdentObj tagOctets;
  short tagClass = -1, constructed = -1;
  unsigned int tag = 0xDEADBEEF;
  const int tagCode = GetTagFromEncoded(encoded, &tagOctets, &tagClass, &constructed, &tag);
  KEYASN_FUZZ_CHECK(tagCode == 0 || tagCode == 205 || tagCode == 206);
  if (tagCode != 0) {
    KEYASN_FUZZ_CHECK(tagClass == -1 && constructed == -1 && tag == 0xDEADBEEF);
    KEYASN_FUZZ_CHECK(tagOctets.Count() == 0);
  }
  if (code == 205) KEYASN_FUZZ_CHECK(tagCode == 205);
  if (size < 2) KEYASN_FUZZ_CHECK(tagCode == 206);
  if (code == 0) {
    KEYASN_FUZZ_CHECK(tagCode == 0);
    KEYASN_FUZZ_CHECK(info.Class == (data[0] & 0xC0));
    KEYASN_FUZZ_CHECK(info.Constructed == (data[0] & 0x20));
    KEYASN_FUZZ_CHECK(tag == info.Tag);
    KEYASN_FUZZ_CHECK(tagClass == info.Class && constructed == info.Constructed);
    if ((data[0] & 0x1F) != 0x1F) {
      KEYASN_FUZZ_CHECK(info.Tag == (data[0] & 0x1Fu));
      KEYASN_FUZZ_CHECK(tagOctets.Count() == 1);
    }
    KEYASN_FUZZ_CHECK(keyasn_fuzz::Same(tagOctets, data, tagOctets.Count()));
    // Contents points into the buffer, behind the identifier and length octets.
    KEYASN_FUZZ_CHECK(info.Contents > data + tagOctets.Count());
    KEYASN_FUZZ_CHECK(info.Contents <= data + size);
    const size_t header = static_cast<size_t>(info.Contents - data);
    const uint8_t first = data[tagOctets.Count()];
    if (info.Length == 0xFFFFFFFFu && first == 0x80) {
      KEYASN_FUZZ_CHECK(info.Constructed);
    } else if (first == 0x80) {  // a primitive element in the indefinite form
      KEYASN_FUZZ_CHECK(!info.Constructed);
      KEYASN_FUZZ_CHECK(header + info.Length + 2 <= size);
      KEYASN_FUZZ_CHECK(info.Contents[info.Length] == 0 && info.Contents[info.Length + 1] == 0);
      for (unsigned int i = 0; i + 1 < info.Length; ++i)
        KEYASN_FUZZ_CHECK(info.Contents[i] != 0 || info.Contents[i + 1] != 0);
    } else if (first < 0x80) {
      KEYASN_FUZZ_CHECK(info.Length == first && header == tagOctets.Count() + 1u);
    } else {
      KEYASN_FUZZ_CHECK(first <= 0x88);
      KEYASN_FUZZ_CHECK(header == tagOctets.Count() + 1u + (first & 0x7Fu));
      unsigned int length = 0;
      for (size_t i = tagOctets.Count() + 1; i < header; ++i) length = length << 8 | data[i];
      KEYASN_FUZZ_CHECK(length == info.Length);
    }
  }
  if (tagCode == 0 && code == 206 && size >= 2) KEYASN_FUZZ_CHECK(info.Length == 0);

  // Replacing the identifier keeps the length and contents octets.
  if (tagCode == 0) {
    Input in(data, size);
    const unsigned char newClass = in.Byte() & 0xC0;
    const bool newConstructed = in.Bool();
    const unsigned int newNumber = in.Byte() % 3 ? in.Byte() : in.U32();
    IdentObj newTag = BuildTag(newClass, newConstructed, newNumber);
    IdentObj modified(encoded);
    KEYASN_FUZZ_CHECK(ModifyTagAtEncoded(&modified, newTag) == 0);
    KEYASN_FUZZ_CHECK(modified.Count() == newTag.Count() + n - tagOctets.Count());
    KEYASN_FUZZ_CHECK(keyasn_fuzz::Same(newTag, modified.GetData(), newTag.Count()));
    KEYASN_FUZZ_CHECK(std::memcmp(modified.GetData() + newTag.Count(),
                                  data + tagOctets.Count(), n - tagOctets.Count()) == 0);
    // And back again (an identifier alone, one octet long, is too short to read).
    if (modified.Count() >= 2) {
      KEYASN_FUZZ_CHECK(ModifyTagAtEncoded(&modified, tagOctets) == 0);
      KEYASN_FUZZ_CHECK(modified == encoded);
    } else {
      KEYASN_FUZZ_CHECK(ModifyTagAtEncoded(&modified, tagOctets) == 206);
    }
  } else {
    IdentObj modified(encoded);
    KEYASN_FUZZ_CHECK(ModifyTagAtEncoded(&modified, BuildTag(0x80, false, 0)) == tagCode);
    KEYASN_FUZZ_CHECK(modified == encoded);
  }
}

// Identifier octets that BuildTag makes parse back to the same class, flag and
// number.
void CheckBuildTag(const uint8_t* data, size_t size) {
  Input in(data, size);
  const unsigned char tagClass = in.Byte() & 0xC0;
  const bool constructed = in.Bool();
  const unsigned int wide = in.U32();
  const unsigned int tag = wide >> (in.Byte() % 32);
  IdentObj octets = BuildTag(tagClass, constructed, tag);
  KEYASN_FUZZ_CHECK(octets.Count() >= 1 && octets.Count() <= 6);
  KEYASN_FUZZ_CHECK((octets.Count() == 1) == (tag <= 30));
  std::vector<uint8_t> element = keyasn_fuzz::Bytes(octets);
  element.push_back(0x00);
  ASNT_ASN_STRUCT_INFO info;
  KEYASN_FUZZ_CHECK(ASNTGetAsnInfo(info, element.data(), keyasn_fuzz::Size32(element.size())) == 0);
  KEYASN_FUZZ_CHECK(info.Class == tagClass);
  KEYASN_FUZZ_CHECK((info.Constructed != 0) == constructed);
  KEYASN_FUZZ_CHECK(info.Tag == tag);
  KEYASN_FUZZ_CHECK(info.Length == 0 && info.Contents == element.data() + element.size());
}

}  // namespace

KEYASN_FUZZ_TARGET(header) {
  CheckParse(data, size);
  CheckBuildTag(data, size);
}
