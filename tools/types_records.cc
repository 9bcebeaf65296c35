// TYPEs of the key transport records: encrypted-key, public-key-info,
// export-key, exchange-key, proxy-exchange, key-record.
#include "keyasn/keyasn.h"

#include "types.h"
#include "types_common.h"

namespace keyasn {
namespace tool {

namespace {

// encrypted-key

void ShowEncryptedKey(const Bytes& der, View* view) {
  CASNEncryptedKey key(nullptr, 0, nullptr, 0);
  Library("cannot read the encrypted key", [&] { key.ReadData(der.data(), Size(der)); });
  view->Octets("encryptedKey", key.encryptedKey.GetData(), key.encryptedKey.Count());
  view->Octets("additionalData", key.additionalData.GetData(), key.additionalData.Count());
}

Bytes EncodeEncryptedKey(const JsonIn& in) {
  const Bytes key = in.Hex("encryptedKey");
  const Bytes extra = in.Hex("additionalData");
  // The writer refuses a member without a buffer; an empty member still gets one.
  static const unsigned char kNone = 0;
  CASNEncryptedKey record(key.empty() ? &kNone : key.data(), Size(key),
                          extra.empty() ? &kNone : extra.data(), Size(extra));
  IdentObj out;
  Library("cannot write the encrypted key", [&] { out = record.WriteData(); });
  return ToBytes(out);
}

// public-key-info

void ShowPublicKeyInfo(const Bytes& der, View* view) {
  CASNPublicKeyInfo info;
  Library("cannot read the public key info", [&] { info.ReadData(der.data(), Size(der)); });
  ShowIdData(&view->Object("idData"), info.idData);
  ShowKeyOctets(view, "publicKey", info.publicKey);
}

Bytes EncodePublicKeyInfo(const JsonIn& in) {
  CASNPublicKeyInfo info;
  info.idData = ReadIdData(in.Get("idData"));
  info.publicKey = ToIdent(in.Hex("publicKey"));
  IdentObj out;
  Library("cannot write the public key info", [&] { out = info.WriteData(); });
  return ToBytes(out);
}

// export-key, exchange-key, proxy-exchange

void ShowExportMembers(View* view, const CASNExportKeyInfo& info) {
  view->Element("keyElement", info.keyElement.GetData(), info.keyElement.Count());
  ShowOptionalElement(view, "extraElement", info.extraElement);
}

void ReadExportMembers(const JsonIn& in, CASNExportKeyInfo* info) {
  info->keyElement = ToIdent(in.Hex("keyElement"));
  info->extraElement = ReadOptionalOctets(in, "extraElement");
}

void ShowExportKey(const Bytes& der, View* view) {
  CASNExportKeyInfo info;
  Library("cannot read the export key info", [&] { info.ReadData(der.data(), Size(der)); });
  ShowExportMembers(view, info);
}

Bytes EncodeExportKey(const JsonIn& in) {
  CASNExportKeyInfo info;
  ReadExportMembers(in, &info);
  IdentObj out;
  Library("cannot write the export key info", [&] { out = info.WriteData(); });
  return ToBytes(out);
}

void ShowExchangeKey(const Bytes& der, View* view) {
  CASNExchangeKeyData data;
  Library("cannot read the exchange key data", [&] { data.ReadData(der.data(), Size(der)); });
  ShowExportMembers(view, data);
  ShowElementList(view, "exchangeItems", data.exchangeItems);
}

Bytes EncodeExchangeKey(const JsonIn& in) {
  CASNExchangeKeyData data;
  ReadExportMembers(in, &data);
  data.exchangeItems = ReadElementList(in, "exchangeItems");
  IdentObj out;
  Library("cannot write the exchange key data", [&] { out = data.WriteData(); });
  return ToBytes(out);
}

void ShowProxyExchange(const Bytes& der, View* view) {
  CASNProxyKeyExchangeData data;
  Library("cannot read the proxy key exchange data", [&] { data.ReadData(der.data(), Size(der)); });
  ShowExportMembers(view, data);
  view->Octets("proxyData", data.proxyData.GetData(), data.proxyData.Count());
}

Bytes EncodeProxyExchange(const JsonIn& in) {
  CASNProxyKeyExchangeData data;
  ReadExportMembers(in, &data);
  data.proxyData = ToIdent(in.Hex("proxyData"));
  IdentObj out;
  Library("cannot write the proxy key exchange data", [&] { out = data.WriteData(); });
  return ToBytes(out);
}

// key-record: an element followed by the key in the buffer's serial form (a
// four-octet little-endian count, then the octets).

void ShowKeyRecord(const Bytes& der, View* view) {
  CASNKeyRecord record;
  const unsigned int used =
      ReadWithCode("cannot read the key record", "CASNKeyRecord::ReadData",
                   [&](int* code) { return record.ReadData(der.data(), Size(der), code); });
  if (used != der.size()) {
    throw ToolError(kExitMalformed, "error at offset " + std::to_string(used) +
                                        ": data after the key record (the key's count says " +
                                        "fewer octets, or the key is missing)");
  }
  view->Element("descriptor", record.descriptor.GetData(), record.descriptor.Count());
  view->Octets("key", record.key.GetData(), record.key.Count());
}

Bytes EncodeKeyRecord(const JsonIn& in) {
  CASNKeyRecord record;
  record.descriptor = ToIdent(in.Hex("descriptor"));
  record.key = ToIdent(in.Hex("key"));
  IdentObj out;
  Library("cannot write the key record", [&] { out = record.WriteData(); });
  if (out.Count() == 0) throw ToolError(kExitMalformed, "cannot write the key record");
  return ToBytes(out);
}

}  // namespace

void AddRecordTypes(std::vector<TypeInfo>* types) {
  types->push_back({"encrypted-key", "CASNEncryptedKey", "an encrypted key and its second octet string",
                    true, ShowEncryptedKey, EncodeEncryptedKey});
  types->push_back({"public-key-info", "CASNPublicKeyInfo", "identifier data and a public key",
                    true, ShowPublicKeyInfo, EncodePublicKeyInfo});
  types->push_back({"export-key", "CASNExportKeyInfo", "an exported key: one or two elements",
                    true, ShowExportKey, EncodeExportKey});
  types->push_back({"exchange-key", "CASNExchangeKeyData",
                    "export key info and a list of further elements", true, ShowExchangeKey,
                    EncodeExchangeKey});
  types->push_back({"proxy-exchange", "CASNProxyKeyExchangeData",
                    "export key info and an octet string", true, ShowProxyExchange,
                    EncodeProxyExchange});
  types->push_back({"key-record", "CASNKeyRecord",
                    "an element followed by a key (4-octet count, then the octets)", false,
                    ShowKeyRecord, EncodeKeyRecord});
}

}  // namespace tool
}  // namespace keyasn
