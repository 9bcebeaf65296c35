#include "keyasn/keys/ephemeral_key.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"
#include "keyasn/record/unit.h"

namespace {

constexpr char kReadPlace[] = "CASNEphemeralKeyInfo::ReadData";

[[noreturn]] void Refuse() { keyasn::detail::RaiseStatus(keyasn::kErrMalformed, kReadPlace); }

// EncodingOf returns an item's encoding; a unit with children rebuilds it from them.
IdentObj EncodingOf(const CASNTBaseRecord& item) {
  if (const CASNTUnit* unit = dynamic_cast<const CASNTUnit*>(&item))
    return unit->GetEncodedRecord(nullptr);
  return item.GetEncodedRecord(nullptr);
}

// ValueOf returns an item's value in the decoder's form, decoded from its encoding.
IdentObj ValueOf(const CASNTBaseRecord& item) {
  CASNTBaseRecord record;
  record.SetEncodedEntry(EncodingOf(item));
  return record.GetRecord(nullptr);
}

// MaskUnusedBits clears in the last key octet the low bits that the BIT STRING's
// first contents octet declares unused.
void MaskUnusedBits(IdentObj* key, unsigned char unusedBits) {
  if (key->Count() == 0) return;
  const unsigned int weight = 1u << (unusedBits & 31);
  key->GetData()[key->Count() - 1] &= static_cast<unsigned char>(0u - weight);
}

// RepairLength pads key bits whose trailing zero octets were lost back to the size
// their own OCTET STRING header declares, or cuts them to it. A declared size that
// the input could not have held is refused rather than allocated.
void RepairLength(IdentObj* key, unsigned int inputSize) {
  CASNTBaseRecord probe;
  const unsigned int header = probe.ReadASNInfo(key->GetData(), key->Count(), nullptr);
  if (probe.GetTag() != 4) return;
  if (probe.GetEntrySize() == 0xFFFFFFFFu) Refuse();
  const unsigned long long declared =
      static_cast<unsigned long long>(header) + probe.GetEntrySize();
  if (declared > inputSize) Refuse();
  if (declared == key->Count()) return;
  IdentObj repaired(nullptr, static_cast<unsigned int>(declared));
  const unsigned int kept = std::min(key->Count(), static_cast<unsigned int>(declared));
  if (kept != 0) std::memcpy(repaired.GetData(), key->GetData(), kept);
  *key = std::move(repaired);
}

}  // namespace

unsigned int CASNEphemeralKeyInfo::ReadData(const unsigned char* data, unsigned int size) {
  CASNTUnit unit;
  const unsigned int used = unit.ReadData(data, size, nullptr);
  // The class of the outer element is not looked at.
  if (!unit.GetIsConstraction() || unit.GetTag() != 0 || unit.GetEntryListSize() < 2) Refuse();

  const CASNTBaseRecord* oid = unit.GetItem(0);
  if (oid->GetTag() != 6) Refuse();
  const IdentObj text = ValueOf(*oid);
  // Inserted in front of what the member holds: it is not cleared first.
  algorithmOid.insert(0, reinterpret_cast<const char*>(text.GetData()), text.Count());

  unsigned int next = 1;
  const CASNTBaseRecord* keyPart = unit.GetItem(1);
  if (keyPart->GetIsConstraction()) {
    const CASNTUnit* part = dynamic_cast<const CASNTUnit*>(keyPart);
    if (!part || part->GetEntryListSize() != 2) Refuse();
    const IdentObj description = EncodingOf(*part->GetItem(0));
    idData.ReadData(description.GetData(), description.Count(), nullptr);
    const IdentObj bits = ValueOf(*part->GetItem(1));
    if (bits.Count() != 0) {
      keyBits.Assign(bits.GetData() + 1, bits.Count() - 1);
      MaskUnusedBits(&keyBits, bits.GetData()[0]);
    }
    RepairLength(&keyBits, size);
    next = 2;
  }

  const CASNTBaseRecord* trailer = unit.GetItem(next);
  if (!trailer || trailer->GetTag() != 4) Refuse();
  trailerData = ValueOf(*trailer);
  return used;
}

IdentObj CASNEphemeralKeyInfo::WriteData() const {
  CASNTUnit outer;
  outer.SetClass(0x80);
  outer.SetIsConstraction(1);
  outer.SetTag(0);

  CASNTBaseRecord oid;
  oid.SetTag(6);
  oid.SetEntry(algorithmOid.data(), static_cast<unsigned int>(algorithmOid.size()));
  outer.Push_Back(oid);

  if (keyBits.Count() != 0) {
    CASNTUnit part;
    part.SetClass(0x80);
    part.SetIsConstraction(1);
    part.SetTag(0);
    CASNTBaseRecord description;
    description.SetEncodedEntry(idData.WriteData(nullptr));
    part.Push_Back(description);
    CASNTBaseRecord bitString;
    bitString.SetTag(3);
    bitString.SetEntry(keyasn::detail::BitStringContents(keyBits));
    part.Push_Back(bitString);
    outer.Push_Back(part);
  }

  CASNTBaseRecord trailer;
  trailer.SetTag(4);
  trailer.SetEntry(trailerData);
  outer.Push_Back(trailer);
  return outer.WriteData(nullptr);
}

CASNEphemeralKeyInfo::CASNEphemeralKeyInfo() = default;

CASNEphemeralKeyInfo::CASNEphemeralKeyInfo(const CASNEphemeralKeyInfo& other) = default;

CASNEphemeralKeyInfo& CASNEphemeralKeyInfo::operator=(const CASNEphemeralKeyInfo& other) = default;

CASNEphemeralKeyInfo::~CASNEphemeralKeyInfo() = default;
