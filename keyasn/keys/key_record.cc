#include "keyasn/keys/key_record.h"

#include <cstring>

#include "keyasn/codec/error_codes.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"
#include "keyasn/support/status.h"

namespace {

constexpr char kReadPlace[] = "CASNKeyRecord::ReadData";

}  // namespace

CASNKeyRecord::CASNKeyRecord(const CASNKeyRecord& other)
    : descriptor(other.descriptor), key(other.key) {}

CASNKeyRecord& CASNKeyRecord::operator=(const CASNKeyRecord& other) {
  if (this == &other) return *this;
  ResetKey();
  descriptor = other.descriptor;
  key = other.key;
  return *this;
}

CASNKeyRecord::~CASNKeyRecord() { ResetKey(); }

void CASNKeyRecord::ResetKey() {
  if (key.Count() != 0) keyasn::detail::SecureZero(key.GetData(), key.Count());
}

unsigned int CASNKeyRecord::ReadData(const void* data, unsigned int size, int* error) {
  int code = keyasn::kOk;
  unsigned int result = 0;
  if (!data) {
    code = keyasn::kErrNotSequenceTag;  // the code this record has always given for no data
  } else {
    CASNTBaseRecord record;
    const unsigned int used = record.ReadData(data, size, &code);
    result = used;
    if (code == 0) descriptor = record.GetEncodedRecord(&code);
    if (code == 0) {
      ResetKey();
      const unsigned int blob =
          key.ReadData(static_cast<const unsigned char*>(data) + used, size - used);
      result = used + blob;
    }
  }
  if (error)
    *error = code;
  else if (code != 0)
    throw XRUVStatus(code, kReadPlace, false);
  return result;
}

IdentObj CASNKeyRecord::WriteData() const {
  const unsigned int head = descriptor.Count();
  const unsigned int blob = key.GetObjectSize();
  if (blob < key.Count() || head > ~0u - blob) return IdentObj();  // cannot be sized
  IdentObj out(nullptr, head + blob);
  if (head != 0) std::memcpy(out.GetData(), descriptor.GetData(), head);
  if (key.WriteData(out.GetData() + head, blob) < blob) return IdentObj();
  return out;
}

CASNKeyRecord::CASNKeyRecord() = default;
