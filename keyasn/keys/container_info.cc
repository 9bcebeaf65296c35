#include "keyasn/keys/container_info.h"

#include <cstring>
#include <list>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/codec/tags.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"
#include "keyasn/record/whole_element.h"
#include "keyasn/support/status.h"

namespace {

using namespace keyasn::detail::tags;

// Both directions report under the writer's name (kept: callers match on it).
constexpr char kPlace[] = "ASNContainerInfo::WriteData";
// The record model reports a failed element read here: callers match on it.
constexpr char kRecordHeaderPlace[] = "CASNTBaseRecord::ReadASNInfo";

ASNKeyInfo DecodeKeyInfo(const IdentObj& encoding) {
  ASNKeyInfo info;
  if (encoding.Count() != 0) info.ReadData(encoding.GetData(), encoding.Count(), nullptr);
  return info;
}

// ReadContainerItem reads the container's item number `index` (0: Version, 1 and 2:
// the key descriptions, then the tagged members) into `ci` as a record reading it
// would, without the record's copy: a failure goes to `*code`, and the first item
// adds the octets its read used (header octets only when it fails) to `*firstUsed`.
void ReadContainerItem(ASNContainerInfo& ci, unsigned int index, const unsigned char* item,
                       unsigned int itemSize, int* code, unsigned int* firstUsed) {
  if (index == 1) return ci.KeyInfo.Assign(item, itemSize);
  if (index == 2) return ci.DefenceKeyInfo.Assign(item, itemSize);
  ASNT_ASN_STRUCT_INFO info;
  unsigned int h = 0;
  *code = keyasn::detail::ParseWholeElement(info, item, itemSize, &h);
  if (index == 0) {
    *firstUsed = *code == 0 ? h + info.Length : h;
    if (*code == 0 && info.Tag != kIntegerTag) *code = keyasn::kErrMalformed;
    if (*code != 0) return;
    const IdentObj value = ASNTLowDecodeData(info, info.Contents, info.Length, code);
    if (*code == 0 && value.Count() > sizeof ci.Version) *code = keyasn::kErrMalformed;
    if (*code == 0) {
      ci.Version = 0;
      if (value.Count() != 0) std::memcpy(&ci.Version, value.GetData(), value.Count());
    }
    return;
  }
  if (*code != 0) return;
  if (info.Class != kContextClass) {
    *code = keyasn::kErrMalformed;
  } else if (info.Tag == 0) {
    ci.Optional0 = ASNTLowDecodeData(info, info.Contents, info.Length, code);
  } else if (info.Tag == 1) {
    // The contents are read as one element with no error pointer: that failure is
    // raised even when the caller gave one (kept for compatibility).
    ASNT_ASN_STRUCT_INFO inner;
    const int innerCode = keyasn::detail::ParseWholeElement(inner, info.Contents, info.Length, &h);
    if (innerCode != 0) throw XRUVStatus(innerCode, kRecordHeaderPlace, false);
    ci.Optional1 = ASNTLowDecodeData(inner, inner.Contents, inner.Length, code);
  }
}

}  // namespace

ASNContainerInfo::ASNContainerInfo() : Version(3) {}

ASNContainerInfo::ASNContainerInfo(const ASNContainerInfo& other) = default;

ASNContainerInfo::~ASNContainerInfo() = default;

ASNContainerInfo& ASNContainerInfo::operator=(const ASNContainerInfo& other) {
  if (this != &other) {
    Version = other.Version;
    KeyInfo = other.KeyInfo;
    DefenceKeyInfo = other.DefenceKeyInfo;
    Optional0 = other.Optional0;
    Optional1 = other.Optional1;
  }
  return *this;
}

bool ASNContainerInfo::operator==(const ASNContainerInfo& other) const {
  return Version == other.Version && KeyInfo == other.KeyInfo &&
         DefenceKeyInfo == other.DefenceKeyInfo && Optional0 == other.Optional0 &&
         Optional1 == other.Optional1;
}

bool ASNContainerInfo::operator!=(const ASNContainerInfo& other) const {
  return !(*this == other);
}

void ASNContainerInfo::SetKeyInfo(const ASNKeyInfo& info) { KeyInfo = info.WriteData(nullptr); }

void ASNContainerInfo::SetDefenceKeyInfo(const ASNKeyInfo& info) {
  DefenceKeyInfo = info.WriteData(nullptr);
}

ASNKeyInfo ASNContainerInfo::GetKeyInfo() const { return DecodeKeyInfo(KeyInfo); }

ASNKeyInfo ASNContainerInfo::GetDefenceKeyInfo() const { return DecodeKeyInfo(DefenceKeyInfo); }

IdentObj ASNContainerInfo::WriteData(int* err) const {
  int code = 0;
  IdentObj result;
  std::list<IdentObj> items;
  CASNTBaseRecord version;
  version.SetTag(kIntegerTag);
  version.SetEntry(&Version, sizeof Version);
  items.push_back(version.WriteData(&code));
  if (code == 0) {
    // Empty key descriptions add no octets.
    items.push_back(KeyInfo);
    items.push_back(DefenceKeyInfo);
  }
  if (code == 0 && Optional0.Count() != 0) {
    CASNTBaseRecord tagged;
    tagged.SetEntry(Optional0);
    tagged.SetIsConstraction(1);
    tagged.SetClass(kContextClass);
    tagged.SetTag(0);
    items.push_back(tagged.WriteData(&code));
  }
  if (code == 0 && Optional1.Count() != 0) {
    CASNTBaseRecord octets;
    octets.SetTag(kOctetStringTag);
    octets.SetEntry(Optional1);
    const IdentObj inner = octets.WriteData(&code);
    if (code == 0) {
      CASNTBaseRecord tagged;
      tagged.SetIsConstraction(1);
      tagged.SetClass(kContextClass);
      tagged.SetTag(1);
      tagged.SetEntry(inner);
      items.push_back(tagged.WriteData(&code));
    }
  }
  if (code == 0) result = ASNTPutSequence(items, kSequenceTag, &code);

  if (err != nullptr) {
    *err = code;
    if (code != 0) result.Empty();
    return result;
  }
  if (code != 0) throw XRUVStatus(code, kPlace, false);
  return result;
}

unsigned int ASNContainerInfo::ReadData(const unsigned char* data, unsigned int size, int* err) {
  int code = 0;
  unsigned int count = 0;
  // Optional1 is not reset: it keeps its value unless the input carries a [1]
  // (kept for compatibility).
  Version = 0;
  KeyInfo.Empty();
  DefenceKeyInfo.Empty();
  Optional0.Empty();

  // The items are read in place when the split cannot fail (no copies), else from
  // ASNTGetSequence's copies; both see the same items. After a failure the rest
  // are skipped.
  unsigned int index = 0;
  unsigned int firstUsed = 0;
  auto read = [&](const unsigned char* item, unsigned int itemSize) {
    if (code == 0) ReadContainerItem(*this, index++, item, itemSize, &code, &firstUsed);
  };
  if (keyasn::detail::ForEachDefiniteItem(data, size, &count,
                                          [](const unsigned char*, unsigned int) {})) {
    keyasn::detail::ForEachDefiniteItem(data, size, &count, read);
  } else {
    std::list<IdentObj> items;
    if (size != 0) count = ASNTGetSequence(items, data, size, &code);
    for (const IdentObj& item : items) read(item.GetData(), item.Count());
  }
  // The first item's size is added to the split's count (kept for compatibility).
  count += firstUsed;

  if (err != nullptr) {
    *err = code;
    return count;
  }
  if (code != 0) throw XRUVStatus(code, kPlace, false);
  return count;
}
