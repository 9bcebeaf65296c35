#include "keyasn/keys/encrypted_key.h"

#include <algorithm>
#include <list>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"

namespace {

constexpr char kReadPlace[] = "CASNEncryptedKey::ReadData";
constexpr char kWritePlace[] = "CASNEncryptedKey::WriteData";

}  // namespace

CASNEncryptedKey::CASNEncryptedKey(const unsigned char* key, unsigned int keySize,
                                   const unsigned char* extra, unsigned int extraSize)
    : encryptedKey(key, keySize), additionalData(extra, extraSize) {}

unsigned int CASNEncryptedKey::ReadData(const unsigned char* data, unsigned int size) {
  using keyasn::detail::RaiseStatus;
  if (!data || size == 0) return 0;

  ASNT_ASN_STRUCT_INFO info{};
  const int code = ASNTGetAsnInfo(info, data, size);
  if (code != 0) RaiseStatus(code, kReadPlace);
  // Only the contents length is compared with the input, not header plus contents:
  // kept for compatibility. The items are still never read beyond `size`.
  if (size < info.Length || info.Tag != 16) RaiseStatus(keyasn::kErrMalformed, kReadPlace);

  const unsigned int header = static_cast<unsigned int>(info.Contents - data);
  if (header > size) RaiseStatus(keyasn::kErrMalformed, kReadPlace);
  const unsigned long long declaredEnd =
      static_cast<unsigned long long>(header) + info.Length;
  const unsigned int end =
      static_cast<unsigned int>(std::min<unsigned long long>(declaredEnd, size));

  CASNTBaseRecord record;
  const unsigned int first = record.ReadData(data + header, end - header, nullptr);
  if (record.GetTag() != 4) RaiseStatus(keyasn::kErrMalformed, kReadPlace);
  encryptedKey = record.GetRecord(nullptr);

  const unsigned int offset = header + first;
  if (offset >= declaredEnd) RaiseStatus(keyasn::kErrMalformed, kReadPlace);
  const unsigned int second = record.ReadData(data + offset, end - offset, nullptr);
  if (record.GetTag() != 4) RaiseStatus(keyasn::kErrMalformed, kReadPlace);
  additionalData = record.GetRecord(nullptr);
  return offset + second;
}

IdentObj CASNEncryptedKey::WriteData() const {
  using keyasn::detail::EncodeUniversalItem;
  if (!encryptedKey.GetData() || !additionalData.GetData())
    keyasn::detail::RaiseStatus(keyasn::kErrCannotWriteKey, kWritePlace);
  std::list<IdentObj> items;
  items.push_back(EncodeUniversalItem(4, encryptedKey.GetData(), encryptedKey.Count()));
  items.push_back(EncodeUniversalItem(4, additionalData.GetData(), additionalData.Count()));
  return ASNTPutSequence(items, 16, nullptr);
}

CASNEncryptedKey::CASNEncryptedKey(const CASNEncryptedKey& other) = default;

CASNEncryptedKey& CASNEncryptedKey::operator=(const CASNEncryptedKey& other) = default;

CASNEncryptedKey::~CASNEncryptedKey() = default;
