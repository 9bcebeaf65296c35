// CASNEphemeralKeyInfo: read through the unit reader, written, read and written
// again. The record tree sizes an empty constructed element as nothing until it
// has been written once, so an identifier description holding one (`30 00` inside
// its parameters) shrinks by two octets per enclosing level on every round; only
// what was written in distinguished form must settle.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/ephemeral_key.h"

KEYASN_FUZZ_TARGET(ephemeral_key) {
  keyasn_fuzz::CheckStable<CASNEphemeralKeyInfo>(
      data, size, [] { return CASNEphemeralKeyInfo(); },
      [](CASNEphemeralKeyInfo& info, const uint8_t* d, unsigned int s) {
        KEYASN_FUZZ_CHECK(info.ReadData(d, s) <= s);
        return 0;
      },
      [](const CASNEphemeralKeyInfo& info) { return info.WriteData(); },
      [](const IdentObj& written) {
        return keyasn_fuzz::IsDer(written.GetData(), written.Count());
      });
  // A second read over a filled structure, and writing whatever it kept.
  CASNEphemeralKeyInfo info;
  (void)keyasn_fuzz::Guard([&] { info.ReadData(data, keyasn_fuzz::Size32(size)); });
  (void)keyasn_fuzz::Guard([&] { info.ReadData(data, keyasn_fuzz::Size32(size)); });
  (void)keyasn_fuzz::Guard([&] { (void)info.WriteData(); });
}
