// CASNEncryptedKey and CASNPublicKeyInfo: read, written, read and written again.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/encrypted_key.h"
#include "keyasn/keys/public_key_info.h"

KEYASN_FUZZ_TARGET(encrypted_key) {
  keyasn_fuzz::CheckStable<CASNEncryptedKey>(
      data, size, [] { return CASNEncryptedKey(nullptr, 0, nullptr, 0); },
      [](CASNEncryptedKey& key, const uint8_t* d, unsigned int s) {
        const unsigned int used = key.ReadData(d, s);
        KEYASN_FUZZ_CHECK(used <= s);
        return 0;
      },
      [](const CASNEncryptedKey& key) { return key.WriteData(); });
  keyasn_fuzz::CheckStable<CASNPublicKeyInfo>(
      data, size, [] { return CASNPublicKeyInfo(); },
      [](CASNPublicKeyInfo& info, const uint8_t* d, unsigned int s) {
        KEYASN_FUZZ_CHECK(static_cast<unsigned int>(info.ReadData(d, s)) <= s);
        return 0;
      },
      [](const CASNPublicKeyInfo& info) { return info.WriteData(); });
  // Null input changes nothing and reports nothing.
  CASNEncryptedKey key(nullptr, 0, nullptr, 0);
  KEYASN_FUZZ_CHECK(key.ReadData(nullptr, keyasn_fuzz::Size32(size)) == 0);
}
