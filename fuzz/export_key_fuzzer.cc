// The key export and exchange records: CASNExportKeyInfo, CASNExchangeKeyData,
// CASNProxyKeyExchangeData and CASNKeyRecord, each read, written, read and
// written again.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/export_key.h"
#include "keyasn/keys/key_record.h"

KEYASN_FUZZ_TARGET(export_key) {
  using keyasn_fuzz::CheckStable;
  CheckStable<CASNExportKeyInfo>(
      data, size, [] { return CASNExportKeyInfo(); },
      [](CASNExportKeyInfo& info, const uint8_t* d, unsigned int s) {
        KEYASN_FUZZ_CHECK(info.ReadData(d, s) <= s);
        return 0;
      },
      [](const CASNExportKeyInfo& info) { return info.WriteData(); });
  CheckStable<CASNExchangeKeyData>(
      data, size, [] { return CASNExchangeKeyData(); },
      [](CASNExchangeKeyData& info, const uint8_t* d, unsigned int s) {
        KEYASN_FUZZ_CHECK(info.ReadData(d, s) <= s);
        return 0;
      },
      [](const CASNExchangeKeyData& info) { return info.WriteData(); });
  CheckStable<CASNProxyKeyExchangeData>(
      data, size, [] { return CASNProxyKeyExchangeData(); },
      [](CASNProxyKeyExchangeData& info, const uint8_t* d, unsigned int s) {
        KEYASN_FUZZ_CHECK(info.ReadData(d, s) <= s);
        return 0;
      },
      [](const CASNProxyKeyExchangeData& info) { return info.WriteData(); });
  CheckStable<CASNKeyRecord>(
      data, size, [] { return CASNKeyRecord(); },
      [](CASNKeyRecord& record, const uint8_t* d, unsigned int s) {
        int err = 0;
        const unsigned int used = record.ReadData(d, s, &err);
        KEYASN_FUZZ_CHECK(used <= s);
        return err;
      },
      [](const CASNKeyRecord& record) { return record.WriteData(); });

  // A key record read over another one, copied, assigned over a filled one and
  // reset.
  CASNKeyRecord record;
  int err = 0;
  (void)record.ReadData(data, keyasn_fuzz::Size32(size), &err);
  (void)record.ReadData(data, keyasn_fuzz::Size32(size), &err);
  CASNKeyRecord copy(record);
  KEYASN_FUZZ_CHECK(copy.WriteData() == record.WriteData());
  CASNKeyRecord assigned(copy);
  assigned = record;
  assigned = *&assigned;  // to itself
  KEYASN_FUZZ_CHECK(assigned.WriteData() == record.WriteData());
  copy.ResetKey();
  KEYASN_FUZZ_CHECK(keyasn_fuzz::Guard([&] {
    CASNKeyRecord none;
    none.ReadData(nullptr, 5, nullptr);
  }) == 28);
}
