// A small program that uses the installed library through its public headers.
#include <keyasn/keyasn.h>

#include <cstdio>
#include <cstring>

int main() {
  const unsigned char der[] = {0x30, 0x03, 0x02, 0x01, 0x05};
  IdentObj copy(der, sizeof der);
  try {
    throw XRUVStatus(206, "consumer", false);
  } catch (const XRUVStatus& e) {
    if (e.Status() != 206 || copy.GetSize() != 5) return 1;
  }
  // The free comparison operators of IdentObj are part of the interface too.
  const IdentObj same(der, sizeof der), shorter(der, 2);
  if (!(copy == same) || copy != same || !(shorter < copy)) {
    std::puts("IdentObj comparison failed");
    return 1;
  }
  ASNT_ASN_STRUCT_INFO info;
  if (ASNTGetAsnInfo(info, der, sizeof der) != 0 || info.Tag != 16 || info.Length != 3 ||
      info.Contents != der + 2)
    return 1;
  // One class of each layer: a record, the typed-value helpers, a key structure.
  CASNTBaseRecord record;
  int error = -1;
  if (record.ReadData(der, sizeof der, &error) != sizeof der || error != 0) return 1;
  if (DerHelper::DecodeInteger(DerHelper::EncodeInteger(300)) != 300) return 1;
  ASNKeyInfo keyInfo;
  keyInfo.Flags = 5;
  const IdentObj encodedKeyInfo = keyInfo.WriteData(&error);
  ASNKeyInfo readBack;
  if (error != 0 || readBack.ReadData(encodedKeyInfo.GetData(), encodedKeyInfo.GetSize(), &error) == 0 ||
      error != 0 || readBack.Flags != 5)
    return 1;
  // The version, error text and object identifier helpers of namespace keyasn.
  if (std::strcmp(keyasn::Version(), KEYASN_VERSION_STRING) != 0) {
    std::printf("built against %s, running %s\n", KEYASN_VERSION_STRING, keyasn::Version());
    return 1;
  }
  if (std::strcmp(keyasn::ErrorText(206), "The data is malformed or truncated.") != 0) return 1;
  const unsigned char oid[] = {0x2A, 0x85, 0x03, 0x02, 0x02, 0x13};
  if (keyasn::OidText(IdentObj(oid, sizeof oid)) != "1.2.643.2.2.19" ||
      keyasn::OidContents("1.2.643.2.2.19") != IdentObj(oid, sizeof oid))
    return 1;
  std::printf("consumer: ok (keyasn %s)\n", keyasn::Version());
  return 0;
}
