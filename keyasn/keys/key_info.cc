#include "keyasn/keys/key_info.h"

#include <algorithm>
#include <cstring>
#include <list>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

constexpr char kReadPlace[] = "ASNKeyInfo::ReadData";
constexpr char kSplitPlace[] = "ASNKeyInfo::ReadData ASNTGetSequence";
constexpr char kHeaderPlace[] = "ASNKeyInfo::ReadData ASNTGetAsnInfo";
constexpr unsigned int kIntegerTag = 2;
constexpr unsigned int kBitStringTag = 3;
constexpr unsigned int kOctetStringTag = 4;
constexpr unsigned int kSequenceTag = 16;
constexpr unsigned char kContextClass = 0x80;
constexpr unsigned int kLastKnownTag = 9;
// With this flag the legacy INTEGER form of [2] widens to 20 octets.
constexpr unsigned int kLongSecondOctetsFlag = 0x10;

// ReadInteger reads an INTEGER item into `target`: zero, then the decoded value
// (least significant octet first) over its first octets. At most four octets are
// copied: a longer value never occurs in the format.
void ReadInteger(const IdentObj& item, unsigned int& target) {
  CASNTBaseRecord record;
  record.ReadData(item.GetData(), item.Count(), nullptr);
  if (record.GetTag() != kIntegerTag) throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
  const IdentObj& value = record.GetRecord(nullptr);
  target = 0;
  if (value.Count() != 0) {
    std::memcpy(&target, value.GetData(), std::min<unsigned int>(value.Count(), sizeof target));
  }
}

// ReadLegacyOctets reads the inner element of [1] or [2]: an OCTET STRING gives
// its value; the legacy INTEGER form gives its value (least significant octet
// first) in a zero-filled buffer of `width` octets, unless it is longer than 15.
IdentObj ReadLegacyOctets(const unsigned char* contents, unsigned int length,
                          unsigned int width) {
  CASNTBaseRecord inner;
  inner.ReadData(contents, length, nullptr);
  const IdentObj& value = inner.GetRecord(nullptr);
  if (inner.GetTag() != kIntegerTag || value.Count() > 15) return value;
  IdentObj widened(nullptr, width);
  std::copy_n(value.GetData(), value.Count(), widened.GetData());
  return widened;
}

// ReadInnerValue returns the decoded value of the one element in `contents`.
IdentObj ReadInnerValue(const unsigned char* contents, unsigned int length) {
  CASNTBaseRecord inner;
  inner.ReadData(contents, length, nullptr);
  return inner.GetRecord(nullptr);
}

}  // namespace

ASNKeyInfo::ASNKeyInfo() : Flags(0), Number(0) {}

ASNKeyInfo::ASNKeyInfo(const ASNKeyInfo& other) = default;

ASNKeyInfo::~ASNKeyInfo() = default;

ASNKeyInfo& ASNKeyInfo::operator=(const ASNKeyInfo& other) {
  if (this != &other) {
    Flags = other.Flags;
    Number = other.Number;
    AlgorithmId = other.AlgorithmId;
    Octets1 = other.Octets1;
    Octets2 = other.Octets2;
    Octets3 = other.Octets3;
    Octets4 = other.Octets4;
    Octets5 = other.Octets5;
    Validity = other.Validity;
    KeyBits = other.KeyBits;
    Octets8 = other.Octets8;
    Octets9 = other.Octets9;
  }
  return *this;
}

bool ASNKeyInfo::operator==(const ASNKeyInfo& other) const {
  return Flags == other.Flags && Number == other.Number && Octets1 == other.Octets1 &&
         Octets2 == other.Octets2 && Octets3 == other.Octets3 && Octets4 == other.Octets4 &&
         Octets5 == other.Octets5 && Validity.GetEncoded() == other.Validity.GetEncoded() &&
         !(KeyBits != other.KeyBits);
}

bool ASNKeyInfo::operator!=(const ASNKeyInfo& other) const { return !(*this == other); }

IdentObj ASNKeyInfo::WriteData(int* err) const {
  std::list<IdentObj> items;
  CASNTBaseRecord outer;
  CASNTBaseRecord inner;

  outer.SetTag(kIntegerTag);
  outer.SetEntry(&Flags, sizeof Flags);
  items.push_back(outer.WriteData(nullptr));
  outer.SetEntry(&Number, sizeof Number);
  items.push_back(outer.WriteData(nullptr));

  outer.SetClass(kContextClass);
  outer.SetIsConstraction(1);

  // Wraps `value` as an OCTET STRING under the explicit tag `tag`.
  auto addOctets = [&](unsigned int tag, const IdentObj& value) {
    if (value.Count() == 0) return;
    inner.SetTag(kOctetStringTag);
    inner.SetEntry(value);
    outer.SetTag(tag);
    outer.SetEntry(inner.WriteData(nullptr));
    items.push_back(outer.WriteData(nullptr));
  };

  if (AlgorithmId.GetObjID().Count() != 0) {
    outer.SetTag(0);
    outer.SetEntry(AlgorithmId.WriteData(nullptr));
    items.push_back(outer.WriteData(nullptr));
  }
  addOctets(1, Octets1);
  addOctets(2, Octets2);
  addOctets(3, Octets3);
  addOctets(4, Octets4);
  addOctets(5, Octets5);
  if (Validity.GetEncoded().Count() != 0) {
    outer.SetTag(6);
    outer.SetEntry(Validity.GetEncoded());
    items.push_back(outer.WriteData(nullptr));
  }
  if (KeyBits.Count() != 0) {
    IdentObj bits(nullptr, KeyBits.Count() + 1);
    bits.GetData()[0] = static_cast<unsigned char>(KeyBits.GetUnusedBits());
    std::copy_n(KeyBits.GetData(), KeyBits.Count(), bits.GetData() + 1);
    inner.SetTag(kBitStringTag);
    inner.SetEntry(bits);
    outer.SetTag(7);
    outer.SetEntry(inner.WriteData(nullptr));
    items.push_back(outer.WriteData(nullptr));
  }
  addOctets(8, Octets8);
  addOctets(9, Octets9);

  return ASNTPutSequence(items, kSequenceTag, err);
}

unsigned int ASNKeyInfo::ReadData(const void* data, unsigned int size, int* err) {
  unsigned int result = 0;
  try {
    // Octets8 and Octets9 are not reset: they keep their values unless the input
    // carries them (kept for compatibility). Flags and Number are read below.
    Octets1.Empty();
    AlgorithmId = ASNAlgorithmIdentifier();
    Octets3.Empty();
    Octets2.Empty();
    Octets4.Empty();
    Octets5.Empty();
    KeyBits = CRUVCryptBitBlob();
    Validity = CASNValid();

    std::list<IdentObj> items;
    result = ASNTGetSequence(items, static_cast<const unsigned char*>(data), size, nullptr);
    if (items.size() < 2) throw XRUVStatus(keyasn::kErrMalformed, kSplitPlace, false);

    auto item = items.begin();
    ReadInteger(*item++, Flags);
    ReadInteger(*item++, Number);

    for (; item != items.end(); ++item) {
      ASNT_ASN_STRUCT_INFO info;
      const int code = ASNTGetAsnInfo(info, item->GetData(), item->Count());
      if (code != 0) throw XRUVStatus(code, kHeaderPlace, false);
      if (info.Class != kContextClass) {
        throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
      }
      if (info.Tag > kLastKnownTag) continue;

      // The contents never reach past the item (an indefinite length included).
      const unsigned char* contents = info.Contents;
      const unsigned int available =
          item->Count() - static_cast<unsigned int>(contents - item->GetData());
      const unsigned int length = std::min(info.Length, available);

      switch (info.Tag) {
        case 0:
          AlgorithmId.ReadData(contents, length, nullptr);
          break;
        case 1:
          // With the flag set a 20-octet buffer used to be made here and then
          // replaced by the 16-octet one: [1] is 16 octets either way (kept).
          Octets1 = ReadLegacyOctets(contents, length, 16);
          break;
        case 2:
          Octets2 = ReadLegacyOctets(contents, length,
                                     (Flags & kLongSecondOctetsFlag) != 0 ? 20 : 16);
          break;
        case 3:
          Octets3 = ReadInnerValue(contents, length);
          break;
        case 4:
          Octets4 = ReadInnerValue(contents, length);
          break;
        case 5:
          Octets5 = ReadInnerValue(contents, length);
          break;
        case 6:
          Validity.SetEncoded(IdentObj(contents, length));
          break;
        case 7: {
          const IdentObj value = ReadInnerValue(contents, length);
          // An empty bit string value reads as an empty blob.
          if (value.Count() == 0) {
            KeyBits = CRUVCryptBitBlob();
          } else {
            KeyBits = CRUVCryptBitBlob(value.GetData() + 1, value.Count() - 1, value.GetData()[0]);
          }
          break;
        }
        case 8:
          Octets8 = ReadInnerValue(contents, length);
          break;
        case 9:
          Octets9 = ReadInnerValue(contents, length);
          break;
        default:
          break;
      }
    }
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return result;
}
