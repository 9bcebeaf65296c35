#include "keyasn/keys/export_key.h"

#include <algorithm>
#include <iterator>

#include "keyasn/codec/error_codes.h"
#include "keyasn/codec/header.h"
#include "keyasn/codec/sequence.h"
#include "keyasn/keys/items.h"
#include "keyasn/record/base_record.h"

namespace {

constexpr char kExportReadPlace[] = "CASNExportKeyInfo::ReadData";
constexpr char kExchangeReadPlace[] = "CASNExchangeKeyData::ReadData ASNTGetSequence";
constexpr char kProxyReadPlace[] = "CASNProxyKeyExchangeData::ReadData ASNTGetSequence";

}  // namespace

unsigned int CASNExportKeyInfo::ReadData(const unsigned char* data, unsigned int size) {
  using keyasn::detail::RaiseStatus;
  if (!data || size == 0) return 0;

  ASNT_ASN_STRUCT_INFO info{};
  int code = ASNTGetAsnInfo(info, data, size);
  if (code != 0) RaiseStatus(code, kExportReadPlace);
  // Only the contents length is compared with the input, and only the tag number is
  // looked at: kept for compatibility. The split never runs beyond `size`.
  if (size < info.Length || info.Tag != 16) RaiseStatus(keyasn::kErrMalformed, kExportReadPlace);
  const unsigned int header = static_cast<unsigned int>(info.Contents - data);
  if (header > size) RaiseStatus(keyasn::kErrMalformed, kExportReadPlace);
  const unsigned int available = size - header;
  const unsigned int length = std::min(info.Length, available);

  std::list<IdentObj> items;
  code = ASNTGetSequence(items, info.Contents, length);
  if (code != 0) RaiseStatus(code, kExportReadPlace);
  if (items.empty()) RaiseStatus(keyasn::kErrMalformed, kExportReadPlace);
  if (length < info.Length) {
    // The contents run past the input. A split that used every octet there would
    // go on beyond it: refused. One that an empty item ended earlier stands.
    unsigned long long used = 0;
    for (const IdentObj& item : items) used += item.Count();
    if (used >= length) RaiseStatus(keyasn::kErrMalformed, kExportReadPlace);
  }

  keyElement = items.front();
  if (items.size() >= 2) extraElement = *std::next(items.begin());
  // The header size, not the element's: callers rely on this value.
  return header;
}

IdentObj CASNExportKeyInfo::WriteData() const {
  std::list<IdentObj> items;
  items.push_back(keyElement);
  if (extraElement.Count() != 0) items.push_back(extraElement);
  return ASNTPutSequence(items, 16, nullptr);
}

unsigned int CASNExchangeKeyData::ReadData(const void* data, unsigned int size) {
  std::list<IdentObj> items;
  const unsigned int consumed =
      ASNTGetSequence(items, static_cast<const unsigned char*>(data), size, nullptr);
  if (items.empty()) keyasn::detail::RaiseStatus(keyasn::kErrMalformed, kExchangeReadPlace);

  const IdentObj& first = items.front();
  CASNExportKeyInfo::ReadData(first.GetData(), first.Count());
  if (items.size() >= 2) {
    const IdentObj& second = *std::next(items.begin());
    // Appends: the list is not cleared first.
    ASNTGetSequence(exchangeItems, second.GetData(), second.Count(), nullptr);
  }
  return consumed;
}

IdentObj CASNExchangeKeyData::WriteData() const {
  std::list<IdentObj> items;
  items.push_back(CASNExportKeyInfo::WriteData());
  if (!exchangeItems.empty()) items.push_back(ASNTPutSequence(exchangeItems, 16, nullptr));
  return ASNTPutSequence(items, 16, nullptr);
}

unsigned int CASNProxyKeyExchangeData::ReadData(const void* data, unsigned int size) {
  std::list<IdentObj> items;
  const unsigned int consumed =
      ASNTGetSequence(items, static_cast<const unsigned char*>(data), size, nullptr);
  if (items.size() != 2) keyasn::detail::RaiseStatus(keyasn::kErrMalformed, kProxyReadPlace);

  const IdentObj& first = items.front();
  CASNExportKeyInfo::ReadData(first.GetData(), first.Count());
  const IdentObj& second = items.back();
  CASNTBaseRecord record;
  record.ReadData(second.GetData(), second.Count(), nullptr);
  proxyData = record.GetRecord(nullptr);
  return consumed;
}

IdentObj CASNProxyKeyExchangeData::WriteData() const {
  std::list<IdentObj> items;
  items.push_back(CASNExportKeyInfo::WriteData());
  items.push_back(keyasn::detail::EncodeUniversalItem(4, proxyData.GetData(), proxyData.Count()));
  return ASNTPutSequence(items, 16, nullptr);
}

CASNExportKeyInfo::CASNExportKeyInfo() = default;

CASNExportKeyInfo::CASNExportKeyInfo(const CASNExportKeyInfo& other) = default;

CASNExportKeyInfo& CASNExportKeyInfo::operator=(const CASNExportKeyInfo& other) = default;

CASNExportKeyInfo::~CASNExportKeyInfo() = default;

CASNExchangeKeyData::CASNExchangeKeyData() = default;

CASNExchangeKeyData::CASNExchangeKeyData(const CASNExchangeKeyData& other) = default;

CASNExchangeKeyData& CASNExchangeKeyData::operator=(const CASNExchangeKeyData& other) = default;

CASNExchangeKeyData::~CASNExchangeKeyData() = default;

CASNProxyKeyExchangeData::CASNProxyKeyExchangeData() = default;

CASNProxyKeyExchangeData::CASNProxyKeyExchangeData(const CASNProxyKeyExchangeData& other) = default;

CASNProxyKeyExchangeData& CASNProxyKeyExchangeData::operator=(const CASNProxyKeyExchangeData& other) = default;

CASNProxyKeyExchangeData::~CASNProxyKeyExchangeData() = default;
