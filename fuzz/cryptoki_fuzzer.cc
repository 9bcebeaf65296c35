// ASNCryptokiElemInfo and ASNCryptokiContInfo: read, written, read and written
// again.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/cryptoki.h"

KEYASN_FUZZ_TARGET(cryptoki) {
  using keyasn_fuzz::CheckStable;
  using keyasn_fuzz::IsLibraryCode;
  CheckStable<ASNCryptokiElemInfo>(
      data, size, [] { return ASNCryptokiElemInfo(); },
      [](ASNCryptokiElemInfo& info, const uint8_t* d, unsigned int s) {
        int err = -1;
        const unsigned int used = info.ReadData(d, s, &err);
        KEYASN_FUZZ_CHECK(used <= s && (err == 0 || used == 0));
        return err;
      },
      [](const ASNCryptokiElemInfo& info) {
        int err = -1;
        IdentObj out = info.WriteData(&err);
        KEYASN_FUZZ_CHECK(err == 0);
        return out;
      });
  CheckStable<ASNCryptokiContInfo>(
      data, size, [] { return ASNCryptokiContInfo(); },
      [](ASNCryptokiContInfo& info, const uint8_t* d, unsigned int s) {
        int err = -1;
        const unsigned int split = info.ReadData(d, s, &err);
        KEYASN_FUZZ_CHECK(err == 0 || IsLibraryCode(err));
        KEYASN_FUZZ_CHECK(split == 0 || IsLibraryCode(static_cast<int>(split)));
        return err != 0 ? err : static_cast<int>(split);
      },
      [](const ASNCryptokiContInfo& info) {
        int err = -1;
        IdentObj out = info.WriteData(&err);
        KEYASN_FUZZ_CHECK(err == 0);
        return out;
      });
}
