#include "keyasn/codec/sequence.h"

#include <cstdint>
#include <cstring>

#include "keyasn/codec/encoder.h"
#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

constexpr char kWhereGet[] = "ASNTGetSequence";
constexpr char kWherePut[] = "ASNTPutSequence";
constexpr unsigned int kIndefinite = 0xFFFFFFFFu;
constexpr unsigned char kConstructed = 0x20;
constexpr int kSequenceTag = 16;
constexpr int kSetTag = 17;

bool IsEndOfContents(const unsigned char* data, uint64_t size, uint64_t offset) {
  return offset + 2 <= size && data[offset] == 0 && data[offset + 1] == 0;
}

// The header record of a SEQUENCE or SET; 28 for any other tag.
int ConstructedHeader(int tag, ASNT_ASN_STRUCT_INFO* info) {
  if (tag != kSequenceTag && tag != kSetTag) return keyasn::kErrNotSequenceTag;
  *info = ASNT_ASN_STRUCT_INFO{};
  info->Class = 0x00;
  info->Constructed = kConstructed;
  info->Tag = static_cast<unsigned int>(tag);
  return keyasn::kOk;
}

IdentObj PutFailure(int code, int* error) {
  if (!error) throw XRUVStatus(code, kWherePut, false);
  *error = code;
  return IdentObj();
}

}  // namespace

int ASNTGetSequence(std::list<IdentObj>& items, const unsigned char* data, unsigned int size) {
  items.clear();
  if (size == 0) return keyasn::kOk;
  uint64_t offset = 0;
  for (;;) {
    const unsigned char* at = data ? data + offset : nullptr;
    const unsigned int left = static_cast<unsigned int>(size - offset);
    // The common item, a one-octet identifier with a short length, is read in
    // place; every other header goes through the parser below.
    if (at != nullptr && left >= 2 && (at[0] & 0x1F) != 0x1F && at[1] < 0x80) {
      const unsigned int itemSize = 2u + at[1];
      // An item with empty contents ends the split (see below).
      if (at[1] == 0) return keyasn::kOk;
      if (offset + itemSize > size) {
        items.clear();
        return keyasn::kErrMalformed;
      }
      items.emplace_back(at, itemSize);
      offset += itemSize;
      if (offset == size) return keyasn::kOk;
      continue;
    }
    ASNT_ASN_STRUCT_INFO info;
    const int code = ASNTGetAsnInfo(info, at, left);
    if (code != keyasn::kOk) {
      items.clear();
      return code;
    }
    // An item with empty contents ends the split wherever it stands; the items
    // behind it are left out. Kept for compatibility with existing containers.
    if (info.Length == 0) return keyasn::kOk;
    const unsigned int h = static_cast<unsigned int>(info.Contents - at);
    uint64_t length = info.Length;
    if (info.Length == kIndefinite) {
      // Measured from the item's first contents octet, as the whole-element
      // splitter does, so both report the same item sizes.
      int measureCode = keyasn::kOk;
      length = CASNTBaseRecord::GetContecstSpecSize(info.Contents, left - h, info.Constructed,
                                                    &measureCode);
      if (measureCode != keyasn::kOk) {
        items.clear();
        return measureCode;
      }
    }
    const uint64_t itemSize = h + length;
    if (offset + itemSize > size) {
      items.clear();
      return keyasn::kErrMalformed;
    }
    items.emplace_back(at, static_cast<unsigned int>(itemSize));
    offset += itemSize;
    if (offset == size) return keyasn::kOk;
  }
}

unsigned int ASNTGetSequence(std::list<IdentObj>& items, const unsigned char* data,
                             unsigned int size, int* error) {
  if (error) *error = keyasn::kOk;
  uint64_t offset = 0;
  try {
    CASNTBaseRecord record;
    const unsigned int h = record.ReadASNInfo(data, size, nullptr);
    offset = h;
    if (!record.GetIsConstraction()) throw XRUVStatus(keyasn::kErrBadIdentifier, kWhereGet, false);
    const bool indefinite = record.GetEntrySize() == kIndefinite;
    const uint64_t end =
        h + static_cast<uint64_t>(indefinite ? CASNTBaseRecord::GetContecstSpecSize(
                                                   data + h, size - h, kConstructed, nullptr)
                                             : record.GetEntrySize());
    if (end > h) {
      for (;;) {
        if (indefinite && IsEndOfContents(data, size, offset)) {
          return static_cast<unsigned int>(offset + 2);
        }
        const unsigned int at = static_cast<unsigned int>(offset);
        const unsigned int ih = record.ReadASNInfo(data + at, size - at, nullptr);
        uint64_t length = record.GetEntrySize();
        if (length == kIndefinite) {
          length = CASNTBaseRecord::GetContecstSpecSize(
              data + at + ih, size - at - ih, record.GetIsConstraction() ? kConstructed : 0,
              nullptr);
        }
        const uint64_t itemSize = ih + length;
        if (offset + itemSize > size) throw XRUVStatus(keyasn::kErrMalformed, kWhereGet, false);
        items.emplace_back(data + at, static_cast<unsigned int>(itemSize));
        offset += itemSize;
        if (offset >= end) break;
      }
      if (!indefinite) return static_cast<unsigned int>(offset);
    } else if (!indefinite) {
      return h;
    }
    if (!IsEndOfContents(data, size, offset)) {
      throw XRUVStatus(keyasn::kErrMalformed, kWhereGet, false);
    }
    return static_cast<unsigned int>(offset + 2);
  } catch (const XRUVStatus& status) {
    if (!error) throw;
    *error = status.Status();
    return static_cast<unsigned int>(offset);
  }
}

unsigned int ASNTGetSequence(std::list<IdentObj>& items, const CRUVFile& file, int* error) {
  if (error) *error = keyasn::kOk;
  CASNTBaseRecord record;
  int code = keyasn::kOk;
  unsigned int consumed = record.ReadASNInfo(file, kIndefinite, &code);
  if (code == keyasn::kOk) {
    if (!record.GetIsConstraction()) {
      code = keyasn::kErrBadIdentifier;
    } else {
      unsigned int length = record.GetEntrySize();
      if (length == kIndefinite) {
        try {
          length = CASNTBaseRecord::GetContecstSpecSize(file, kConstructed, nullptr);
        } catch (const XRUVStatus& status) {
          if (!error) throw;
          *error = status.Status();
          return consumed;
        }
      }
      // Never more than the file still holds: a length beyond it reads short.
      const uint64_t here = file.CurPos();
      const uint64_t fileLength = file.Length();
      const uint64_t available = fileLength > here ? fileLength - here : 0;
      IdentObj contents(nullptr, static_cast<unsigned int>(length < available ? length : available));
      const unsigned int got = file.Read(contents.GetData(), contents.Count());
      consumed += got;
      code = got < length ? keyasn::kErrShortRead : ASNTGetSequence(items, contents.GetData(), got);
    }
  }
  if (code != keyasn::kOk) {
    if (!error) throw XRUVStatus(code, kWhereGet, false);
    *error = code;
  }
  return consumed;
}

IdentObj ASNTPutSequence(const std::list<IdentObj>& items, int tag, int* error) {
  ASNT_ASN_STRUCT_INFO info;
  const int code = ConstructedHeader(tag, &info);
  if (code != keyasn::kOk) return PutFailure(code, error);
  uint64_t total = 0;
  for (const IdentObj& item : items) total += item.Count();
  if (total > 0xFFFFFFFFu) return PutFailure(keyasn::kErrMalformed, error);
  IdentObj contents(nullptr, static_cast<unsigned int>(total));
  unsigned int offset = 0;
  for (const IdentObj& item : items) {
    if (item.Count() != 0) std::memcpy(contents.GetData() + offset, item.GetData(), item.Count());
    offset += item.Count();
  }
  IdentObj result = ASNTLowEncodeData(info, contents.GetData(), contents.Count(), nullptr);
  if (error) *error = keyasn::kOk;
  return result;
}

IdentObj ASNTPutSequence(const std::list<unsigned int>& sizes, int tag, int* error) {
  ASNT_ASN_STRUCT_INFO info;
  const int code = ConstructedHeader(tag, &info);
  if (code != keyasn::kOk) return PutFailure(code, error);
  uint64_t total = 0;
  for (unsigned int size : sizes) total += size;
  // The length octets cannot carry more than 32 bits.
  if (total > 0xFFFFFFFFu) return PutFailure(keyasn::kErrMalformed, error);
  IdentObj result = ASNTLowEncodeData(info, nullptr, static_cast<unsigned int>(total), nullptr);
  if (error) *error = keyasn::kOk;
  return result;
}
