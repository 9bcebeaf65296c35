#include "keyasn/keys/id_data.h"

#include <algorithm>
#include <list>
#include <utility>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/codec/tags.h"
#include "keyasn/record/base_record.h"
#include "keyasn/record/whole_element.h"
#include "keyasn/support/status.h"

namespace {

using namespace keyasn::detail::tags;

constexpr char kReadPlace[] = "CASNTIdData::ReadData";
// The record model reports a failed element read here: callers match on it.
constexpr char kRecordHeaderPlace[] = "CASNTBaseRecord::ReadASNInfo";
constexpr unsigned int kIndefinite = 0xFFFFFFFF;

// ReadObjectId reads the OBJECT IDENTIFIER element at the front of `data` into
// `objId` and adds the octets it used to `count`, before its tag is tested: a
// reader that fails on the tag reports them as consumed. The identifier is kept as
// its contents octets as they stand (not as dotted text), so it writes back unchanged.
unsigned int ReadObjectId(const unsigned char* data, unsigned int size, IdentObj& objId,
                          unsigned int& count) {
  // As a record would read it, without the record's copy of the element.
  ASNT_ASN_STRUCT_INFO info;
  unsigned int h = 0;
  const int code = keyasn::detail::ParseWholeElement(info, data, size, &h);
  if (code != keyasn::kOk) throw XRUVStatus(code, kRecordHeaderPlace, false);
  const unsigned int used = h + info.Length;
  count += used;
  if (info.Tag != kObjectIdTag) throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
  objId.Assign(info.Contents, info.Length);
  return used;
}

// ReadParameters looks at the element at the front of `data` (possibly no octets
// at all, which the record model reports as malformed): NULL leaves `addInfo` empty and returns 0 (the NULL is not counted, kept for
// compatibility); any other element is kept whole and its size returned.
unsigned int ReadParameters(const unsigned char* data, unsigned int size, IdentObj& addInfo) {
  CASNTBaseRecord record;
  const unsigned int headerSize = record.ReadASNInfo(data, size, nullptr);
  if (headerSize > size) throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
  if (record.GetTag() == kNullTag) {
    addInfo.Empty();
    return 0;
  }
  const unsigned int remaining = size - headerSize;
  unsigned int length = record.GetEntrySize();
  if (length == kIndefinite) {
    length = CASNTBaseRecord::GetContecstSpecSize(data + headerSize, remaining,
                                                  record.GetIsConstraction(), nullptr);
  }
  // The parameters must lie within the data: never copy past its end.
  if (length > remaining) throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
  addInfo.Assign(data, headerSize + length);
  return headerSize + length;
}

}  // namespace

CASNTIdData::CASNTIdData() = default;

CASNTIdData::CASNTIdData(const CASNTIdData& other) = default;

CASNTIdData::~CASNTIdData() = default;

CASNTIdData& CASNTIdData::operator=(const CASNTIdData& other) {
  if (this != &other) {
    objId = other.objId;
    addInfo = other.addInfo;
  }
  return *this;
}

void CASNTIdData::Clear() {
  objId.Empty();
  addInfo.Empty();
}

bool CASNTIdData::operator==(const CASNTIdData& other) const {
  return objId == other.objId && addInfo == other.addInfo;
}

bool CASNTIdData::operator!=(const CASNTIdData& other) const {
  if (objId != other.objId) return true;
  return addInfo != other.addInfo;
}

bool CASNTIdData::operator<(const CASNTIdData& other) const {
  return objId < other.objId && addInfo < other.addInfo;
}

bool CASNTIdData::operator>(const CASNTIdData& other) const {
  return !(objId < other.objId) || !(addInfo < other.addInfo);
}

unsigned int CASNTIdData::ReadData(const void* data, unsigned int size, int* err) {
  const unsigned char* bytes = static_cast<const unsigned char*>(data);
  unsigned int count = 0;
  try {
    CASNTBaseRecord record;
    count = record.ReadASNInfo(bytes, size, nullptr);
    if (record.GetTag() != kSequenceTag || count > size) {
      throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
    }
    // The items are read from the rest of the buffer; the outer length is not
    // used to bound them (kept for compatibility).
    ReadObjectId(bytes + count, size - count, objId, count);
    if (count == size) {
      addInfo.Empty();
      return count;
    }
    count += ReadParameters(bytes + count, size - count, addInfo);
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return count;
}

unsigned int CASNTIdData::ReadData(const CRUVFile& file, int* err) {
  unsigned int count = 0;
  try {
    CASNTBaseRecord record;
    count = record.ReadASNInfo(file, kIndefinite, nullptr);
    if (record.GetTag() != kSequenceTag) {
      throw XRUVStatus(keyasn::kErrMalformed, kReadPlace, false);
    }
    unsigned int length = record.GetEntrySize();
    if (length == kIndefinite) {
      length = CASNTBaseRecord::GetContecstSpecSize(file, record.GetIsConstraction(), nullptr);
    }
    // Never allocate for contents the file cannot hold.
    const unsigned int position = file.CurPos();
    const unsigned int fileLength = file.Length();
    if (position > fileLength || length > fileLength - position) {
      throw XRUVStatus(keyasn::kErrTooShort, kReadPlace, false);
    }
    IdentObj contents(nullptr, length);
    const unsigned int read = file.Read(contents.GetData(), length);
    count += read;
    // The count already holds what the file gave; the items' octets are not added.
    unsigned int used = 0;
    ReadObjectId(contents.GetData(), length, objId, used);
    // The parameters header is parsed even when no octets remain: the record
    // model reports such a sequence as malformed.
    ReadParameters(contents.GetData() + used, length - used, addInfo);
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return count;
}

IdentObj CASNTIdData::WriteData(int* err) const {
  try {
    std::list<IdentObj> items;
    {
      // The identifier is held as its contents octets: wrap them as they stand.
      CASNTBaseRecord record;
      const IdentObj lengthOctets = record.EncodeSize(objId.Count());
      IdentObj element(nullptr, 1 + lengthOctets.Count() + objId.Count());
      unsigned char* out = element.GetData();
      out[0] = static_cast<unsigned char>(kObjectIdTag);
      std::copy_n(lengthOctets.GetData(), lengthOctets.Count(), out + 1);
      std::copy_n(objId.GetData(), objId.Count(), out + 1 + lengthOctets.Count());
      items.push_back(std::move(element));
    }
    if (addInfo.Count() != 0) {
      items.push_back(addInfo);
    } else {
      CASNTBaseRecord null;
      null.SetTag(kNullTag);
      items.push_back(null.WriteData(nullptr));
    }
    return ASNTPutSequence(items, kSequenceTag, nullptr);
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return IdentObj();
}

unsigned int CASNTIdData::WriteData(CRUVFile& file, int* err) const {
  try {
    const IdentObj encoded = WriteData(err);
    if (encoded.Count() == 0) return 0;
    return file.Write(encoded.GetData(), encoded.Count());
  } catch (const XRUVStatus& status) {
    if (err == nullptr) throw;
    *err = status.Status();
  }
  return 0;
}

unsigned int CASNTIdData::GetObjectSize() const {
  try {
    return WriteData(nullptr).Count();
  } catch (const XRUVStatus&) {
    return 0;
  }
}

ASNAlgorithmIdentifier::ASNAlgorithmIdentifier() = default;

ASNAlgorithmIdentifier::ASNAlgorithmIdentifier(const ASNAlgorithmIdentifier& other) = default;

ASNAlgorithmIdentifier::~ASNAlgorithmIdentifier() = default;

ASNAlgorithmIdentifier& ASNAlgorithmIdentifier::operator=(
    const ASNAlgorithmIdentifier& other) {
  CASNTIdData::operator=(other);
  return *this;
}

IdentObj ASNAlgorithmIdentifier::GetObjID() const { return objId; }

void ASNAlgorithmIdentifier::SetObjID(const IdentObj& value) { objId = value; }

IdentObj ASNAlgorithmIdentifier::GetAddInfo() const { return addInfo; }

void ASNAlgorithmIdentifier::SetAddInfo(const IdentObj& value) { addInfo = value; }
