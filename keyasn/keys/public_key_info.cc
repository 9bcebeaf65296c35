#include "keyasn/keys/public_key_info.h"

#include <list>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"

namespace {

constexpr char kReadPlace[] = "CASNPublicKeyInfo::ReadData";
constexpr char kSplitPlace[] = "CASNPublicKeyInfo::ReadData ASNTGetSequence";

}  // namespace

int CASNPublicKeyInfo::ReadData(const unsigned char* data, unsigned int size) {
  using keyasn::detail::RaiseStatus;
  std::list<IdentObj> items;
  const unsigned int consumed = ASNTGetSequence(items, data, size, nullptr);
  if (items.size() != 2) RaiseStatus(keyasn::kErrMalformed, kSplitPlace);

  const IdentObj& description = items.front();
  idData.ReadData(description.GetData(), description.Count(), nullptr);

  const IdentObj& key = items.back();
  CASNTBaseRecord record;
  record.ReadData(key.GetData(), key.Count(), nullptr);
  if (record.GetTag() != 3) RaiseStatus(keyasn::kErrMalformed, kReadPlace);
  // The whole contents, unused-bits octet first; that octet is dropped unchecked.
  const IdentObj& bits = record.GetRecord(nullptr);
  if (bits.Count() > 1)
    publicKey.Assign(bits.GetData() + 1, bits.Count() - 1);
  else
    publicKey.Empty();
  return static_cast<int>(consumed);
}

IdentObj CASNPublicKeyInfo::WriteData() const {
  std::list<IdentObj> items;
  items.push_back(idData.WriteData(nullptr));
  const IdentObj bits = keyasn::detail::BitStringContents(publicKey);
  items.push_back(keyasn::detail::EncodeUniversalItem(3, bits.GetData(), bits.Count()));
  return ASNTPutSequence(items, 16, nullptr);
}

CASNPublicKeyInfo::CASNPublicKeyInfo() = default;

CASNPublicKeyInfo::CASNPublicKeyInfo(const CASNPublicKeyInfo& other) = default;

CASNPublicKeyInfo& CASNPublicKeyInfo::operator=(const CASNPublicKeyInfo& other) = default;

CASNPublicKeyInfo::~CASNPublicKeyInfo() = default;
