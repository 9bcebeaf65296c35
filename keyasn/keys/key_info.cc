#include "keyasn/codec/tags.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/keys/key_info_records.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>

#include "keyasn/codec/decoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/octets.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

using namespace keyasn::detail::tags;

constexpr char kReadPlace[] = "ASNKeyInfo::ReadData";
constexpr char kSplitPlace[] = "ASNKeyInfo::ReadData ASNTGetSequence";
constexpr char kHeaderPlace[] = "ASNKeyInfo::ReadData ASNTGetAsnInfo";
constexpr unsigned int kLastKnownTag = 9;
// With this flag the legacy INTEGER form of [2] widens to 20 octets.
constexpr unsigned int kLongSecondOctetsFlag = 0x10;

// Sizes above this take the record model's way (WriteKeyInfoByRecords): far beyond
// any key, and below the point where length octets or sums could overflow.
constexpr uint64_t kDirectLimit = 0x7FFFFF00u;

uint64_t TlvSize(uint64_t contents) {
  return 1 + keyasn::detail::LengthSize(static_cast<unsigned int>(contents)) + contents;
}

}  // namespace

namespace keyasn {
namespace detail {

// KeyInfoWriter measures (out null) or writes the items of a key info, in the
// order and form the record model gives them: INTEGER Flags and Number, then each
// present optional member as an explicit context tag around its inner element.
class KeyInfoWriter {
 public:
  // Emit returns the contents size of the SEQUENCE; with `out` it also writes them.
  static uint64_t Emit(const ASNKeyInfo& ki, unsigned char* out) {
    KeyInfoWriter w(out);
    w.Integer(ki.Flags);
    w.Integer(ki.Number);
    const IdentObj& objId = ki.AlgorithmId.objId;
    if (objId.Count() != 0) {
      const IdentObj& addInfo = ki.AlgorithmId.addInfo;
      const uint64_t oid = TlvSize(objId.Count());
      const uint64_t params = addInfo.Count() != 0 ? addInfo.Count() : 2;
      const uint64_t sequence = TlvSize(oid + params);
      w.Header(0xA0, sequence);
      w.Header(0x30, oid + params);
      w.Header(0x06, objId.Count());
      w.Octets(objId.GetData(), objId.Count());
      if (addInfo.Count() != 0) {
        w.Octets(addInfo.GetData(), addInfo.Count());
      } else {
        w.Header(0x05, 0);  // NULL stands in for absent parameters
      }
    }
    w.OctetString(1, ki.Octets1);
    w.OctetString(2, ki.Octets2);
    w.OctetString(3, ki.Octets3);
    w.OctetString(4, ki.Octets4);
    w.OctetString(5, ki.Octets5);
    const IdentObj& validity = ki.Validity.GetEncoded();
    if (validity.Count() != 0) {
      w.Header(0xA6, validity.Count());
      w.Octets(validity.GetData(), validity.Count());
    }
    if (ki.KeyBits.Count() != 0) {
      const uint64_t bits = 1 + static_cast<uint64_t>(ki.KeyBits.Count());
      w.Header(0xA7, TlvSize(bits));
      w.Header(0x03, bits);
      const unsigned char unused = static_cast<unsigned char>(ki.KeyBits.GetUnusedBits());
      w.Octets(&unused, 1);
      w.Octets(ki.KeyBits.GetData(), ki.KeyBits.Count());
    }
    w.OctetString(8, ki.Octets8);
    w.OctetString(9, ki.Octets9);
    return w.size_;
  }

 private:
  explicit KeyInfoWriter(unsigned char* out) : out_(out) {}

  void Octets(const unsigned char* data, uint64_t n) {
    if (out_ != nullptr && n != 0) std::memcpy(out_ + size_, data, n);
    size_ += n;
  }
  // Header writes identifier octet `id` and the length octets of `length`. While
  // measuring, a length beyond the direct limit only has to be counted as such.
  void Header(unsigned char id, uint64_t length) {
    if (length > kDirectLimit) length = kDirectLimit + 1;
    unsigned char octets[1 + keyasn::detail::kMaxLengthOctets];
    octets[0] = id;
    const unsigned int n =
        1 + keyasn::detail::PutLength(octets + 1, static_cast<unsigned int>(length));
    Octets(octets, n);
  }
  // The four octets of `value`, least significant first, as the INTEGER encoder
  // minimises them.
  void Integer(unsigned int value) {
    const unsigned char le[4] = {static_cast<unsigned char>(value),
                                 static_cast<unsigned char>(value >> 8),
                                 static_cast<unsigned char>(value >> 16),
                                 static_cast<unsigned char>(value >> 24)};
    const unsigned int n = keyasn::detail::IntegerContentsSize(le, 4);
    Header(0x02, n);
    unsigned char be[4];
    for (unsigned int i = 0; i < n; ++i) be[i] = le[n - 1 - i];
    Octets(be, n);
  }
  // [tag] { OCTET STRING value } when the value is not empty.
  void OctetString(unsigned int tag, const IdentObj& value) {
    if (value.Count() == 0) return;
    Header(static_cast<unsigned char>(0xA0 | tag), TlvSize(value.Count()));
    Header(0x04, value.Count());
    Octets(value.GetData(), value.Count());
  }

  unsigned char* out_;
  uint64_t size_ = 0;
};

// KeyInfoReader fills members of a key info that the public setters would only
// take as a copy of a temporary.
class KeyInfoReader {
 public:
  // SetValidity is Validity.SetEncoded(IdentObj(encoding, size)) in one copy.
  static void SetValidity(CASNValid& validity, const unsigned char* encoding, unsigned int size) {
    validity.encoded.Assign(encoding, size);
  }
};

}  // namespace detail
}  // namespace keyasn

namespace {


// PlainElement parses the element at `data` when its identifier is one octet and
// its length definite and within `size`: `*info` then describes it exactly as a
// record reading and re-parsing these octets would, so its value can be decoded
// without the record's copies. Anything else is left to the record model.
bool PlainElement(const unsigned char* data, unsigned int size, ASNT_ASN_STRUCT_INFO* info) {
  if (data == nullptr || size < 2 || (data[0] & 0x1F) == 0x1F || data[1] == 0x80) return false;
  if (ASNTGetAsnInfo(*info, data, size) != keyasn::kOk) return false;
  const unsigned int h = static_cast<unsigned int>(info->Contents - data);
  return h <= size && info->Length <= size - h;
}

// DecodePlain is GetRecord(nullptr) of a record that read the element `info`
// describes.
IdentObj DecodePlain(const ASNT_ASN_STRUCT_INFO& info) {
  return ASNTLowDecodeData(info, info.Contents, info.Length, nullptr);
}

// ReadInteger reads an INTEGER item into `target`: zero, then the decoded value
// (least significant octet first) over its first octets. At most four octets are
// copied: a longer value never occurs in the format.
void ReadInteger(const unsigned char* item, unsigned int itemSize, unsigned int& target) {
  ASNT_ASN_STRUCT_INFO info;
  if (PlainElement(item, itemSize, &info) && info.Tag == kIntegerTag &&
      info.Class != kContextClass) {
    // The INTEGER's decoded value (one leading 0x00 dropped, least significant
    // octet first), its first four octets over a zero target.
    const unsigned char* p = info.Contents;
    unsigned int n = info.Length;
    if (n >= 2 && p[0] == 0x00) {
      ++p;
      --n;
    }
    unsigned char le[sizeof target] = {};
    for (unsigned int i = 0; i < n && i < sizeof target; ++i) le[i] = p[n - 1 - i];
    std::memcpy(&target, le, sizeof target);
    return;
  }
  CASNTBaseRecord record;
  record.ReadData(item, itemSize, nullptr);
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
  ASNT_ASN_STRUCT_INFO info;
  if (PlainElement(contents, length, &info)) {
    IdentObj value = DecodePlain(info);
    if (info.Tag != kIntegerTag || value.Count() > 15) return value;
    IdentObj widened(nullptr, width);
    std::copy_n(value.GetData(), value.Count(), widened.GetData());
    return widened;
  }
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
  ASNT_ASN_STRUCT_INFO info;
  if (PlainElement(contents, length, &info)) return DecodePlain(info);
  CASNTBaseRecord inner;
  inner.ReadData(contents, length, nullptr);
  return inner.GetRecord(nullptr);
}

// BitBlob is the blob of a decoded bit string value: the unused-bit count, then
// the bits. An empty value reads as an empty blob.
CRUVCryptBitBlob BitBlob(const unsigned char* value, unsigned int size) {
  if (size == 0) return CRUVCryptBitBlob();
  return CRUVCryptBitBlob(value + 1, size - 1, value[0]);
}

// ReadItem reads the SEQUENCE's item number `index` (0: Flags, 1: Number, then the
// tagged members) into `ki`.
void ReadItem(ASNKeyInfo& ki, unsigned int index, const unsigned char* item,
              unsigned int itemSize) {
  if (index == 0) return ReadInteger(item, itemSize, ki.Flags);
  if (index == 1) return ReadInteger(item, itemSize, ki.Number);
  ASNT_ASN_STRUCT_INFO info;
  const int code = ASNTGetAsnInfo(info, item, itemSize);
  if (code != 0) throw XRUVStatus(code, kHeaderPlace, false);
  if (info.Class != kContextClass) {
    throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
  }
  if (info.Tag > kLastKnownTag) return;

  // The contents never reach past the item (an indefinite length included).
  const unsigned char* contents = info.Contents;
  const unsigned int available = itemSize - static_cast<unsigned int>(contents - item);
  const unsigned int length = std::min(info.Length, available);

  switch (info.Tag) {
    case 0:
      ki.AlgorithmId.ReadData(contents, length, nullptr);
      break;
    case 1:
      // With the flag set a 20-octet buffer used to be made here and then
      // replaced by the 16-octet one: [1] is 16 octets either way (kept).
      ki.Octets1 = ReadLegacyOctets(contents, length, 16);
      break;
    case 2:
      ki.Octets2 = ReadLegacyOctets(contents, length,
                                 (ki.Flags & kLongSecondOctetsFlag) != 0 ? 20 : 16);
      break;
    case 3:
      ki.Octets3 = ReadInnerValue(contents, length);
      break;
    case 4:
      ki.Octets4 = ReadInnerValue(contents, length);
      break;
    case 5:
      ki.Octets5 = ReadInnerValue(contents, length);
      break;
    case 6:
      keyasn::detail::KeyInfoReader::SetValidity(ki.Validity, contents, length);
      break;
    case 7: {
      // A plain BIT STRING decodes to a copy of its contents (of any class): the
      // blob is made from the contents themselves.
      ASNT_ASN_STRUCT_INFO bits;
      if (PlainElement(contents, length, &bits) && bits.Tag == kBitStringTag) {
        ki.KeyBits = BitBlob(bits.Contents, bits.Length);
        break;
      }
      const IdentObj value = ReadInnerValue(contents, length);
      ki.KeyBits = BitBlob(value.GetData(), value.Count());
      break;
    }
    case 8:
      ki.Octets8 = ReadInnerValue(contents, length);
      break;
    case 9:
      ki.Octets9 = ReadInnerValue(contents, length);
      break;
    default:
      break;
  }
}

}  // namespace

namespace keyasn {
namespace detail {

IdentObj WriteKeyInfoByRecords(const ASNKeyInfo& ki, int* err) {
  std::list<IdentObj> items;
  CASNTBaseRecord outer;
  CASNTBaseRecord inner;

  outer.SetTag(kIntegerTag);
  outer.SetEntry(&ki.Flags, sizeof ki.Flags);
  items.push_back(outer.WriteData(nullptr));
  outer.SetEntry(&ki.Number, sizeof ki.Number);
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

  if (ki.AlgorithmId.GetObjID().Count() != 0) {
    outer.SetTag(0);
    outer.SetEntry(ki.AlgorithmId.WriteData(nullptr));
    items.push_back(outer.WriteData(nullptr));
  }
  addOctets(1, ki.Octets1);
  addOctets(2, ki.Octets2);
  addOctets(3, ki.Octets3);
  addOctets(4, ki.Octets4);
  addOctets(5, ki.Octets5);
  if (ki.Validity.GetEncoded().Count() != 0) {
    outer.SetTag(6);
    outer.SetEntry(ki.Validity.GetEncoded());
    items.push_back(outer.WriteData(nullptr));
  }
  if (ki.KeyBits.Count() != 0) {
    IdentObj bits(nullptr, ki.KeyBits.Count() + 1);
    bits.GetData()[0] = static_cast<unsigned char>(ki.KeyBits.GetUnusedBits());
    std::copy_n(ki.KeyBits.GetData(), ki.KeyBits.Count(), bits.GetData() + 1);
    inner.SetTag(kBitStringTag);
    inner.SetEntry(bits);
    outer.SetTag(7);
    outer.SetEntry(inner.WriteData(nullptr));
    items.push_back(outer.WriteData(nullptr));
  }
  addOctets(8, ki.Octets8);
  addOctets(9, ki.Octets9);

  return ASNTPutSequence(items, kSequenceTag, err);
}

}  // namespace detail
}  // namespace keyasn

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
  // The items are written straight into one buffer of the final size; the
  // octets are those the record model and ASNTPutSequence give.
  const uint64_t contents = keyasn::detail::KeyInfoWriter::Emit(*this, nullptr);
  if (contents > kDirectLimit) return keyasn::detail::WriteKeyInfoByRecords(*this, err);
  const unsigned int size = static_cast<unsigned int>(contents);
  unsigned char header[1 + keyasn::detail::kMaxLengthOctets];
  header[0] = 0x30;
  const unsigned int h = 1 + keyasn::detail::PutLength(header + 1, size);
  IdentObj result;
  result.Alloc(h + size);
  std::memcpy(result.GetData(), header, h);
  keyasn::detail::KeyInfoWriter::Emit(*this, result.GetData() + h);
  if (err != nullptr) *err = keyasn::kOk;  // as the join reports success
  return result;
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

    // The items are read in place when the split cannot fail (no copies), else
    // from ASNTGetSequence's copies; both see the same items.
    const unsigned char* octets = static_cast<const unsigned char*>(data);
    unsigned int count = 0;
    std::list<IdentObj> items;
    if (keyasn::detail::ForEachDefiniteItem(octets, size, &result,
                            [&count](const unsigned char*, unsigned int) { ++count; })) {
      if (count < 2) throw XRUVStatus(keyasn::kErrMalformed, kSplitPlace, false);
      count = 0;
      keyasn::detail::ForEachDefiniteItem(octets, size, &result,
                          [this, &count](const unsigned char* item, unsigned int itemSize) {
                            ReadItem(*this, count++, item, itemSize);
                          });
    } else {
      result = ASNTGetSequence(items, octets, size, nullptr);
      if (items.size() < 2) throw XRUVStatus(keyasn::kErrMalformed, kSplitPlace, false);
      for (const IdentObj& item : items) ReadItem(*this, count++, item.GetData(), item.Count());
    }
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return result;
}
