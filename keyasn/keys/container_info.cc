#include "keyasn/keys/container_info.h"

#include <cstring>
#include <list>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/codec/tags.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

using namespace keyasn::detail::tags;

// Both directions report under the writer's name (kept: callers match on it).
constexpr char kPlace[] = "ASNContainerInfo::WriteData";

ASNKeyInfo DecodeKeyInfo(const IdentObj& encoding) {
  ASNKeyInfo info;
  if (encoding.Count() != 0) info.ReadData(encoding.GetData(), encoding.Count(), nullptr);
  return info;
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

  std::list<IdentObj> items;
  if (size != 0) count = ASNTGetSequence(items, data, size, &code);
  if (code == 0 && !items.empty()) {
    auto item = items.begin();
    CASNTBaseRecord record;
    // The first item's size is added to the split's count (kept for compatibility).
    count += record.ReadData(item->GetData(), item->Count(), &code);
    if (code == 0 && record.GetTag() != kIntegerTag) code = keyasn::kErrMalformed;
    if (code == 0) {
      const IdentObj& value = record.GetRecord(&code);
      if (code == 0 && value.Count() > sizeof Version) code = keyasn::kErrMalformed;
      if (code == 0) {
        Version = 0;
        if (value.Count() != 0) std::memcpy(&Version, value.GetData(), value.Count());
      }
    }
    // A container of a bare number is accepted.
    if (code == 0 && ++item != items.end()) {
      KeyInfo = *item;
      if (++item != items.end()) {
        DefenceKeyInfo = *item;
        for (++item; code == 0 && item != items.end(); ++item) {
          const unsigned int used = record.ReadData(item->GetData(), item->Count(), &code);
          if (code != 0) break;
          if (record.GetClass() != kContextClass) {
            code = keyasn::kErrMalformed;
            break;
          }
          if (record.GetTag() == 0) {
            Optional0 = record.GetRecord(&code);
          } else if (record.GetTag() == 1) {
            // A successful read used header + contents, all within the item.
            const unsigned int length = record.GetEntrySize();
            CASNTBaseRecord inner;
            inner.ReadData(item->GetData() + used - length, length, nullptr);
            Optional1 = inner.GetRecord(&code);
          }
        }
      }
    }
  }

  if (err != nullptr) {
    *err = code;
    return count;
  }
  if (code != 0) throw XRUVStatus(code, kPlace, false);
  return count;
}
