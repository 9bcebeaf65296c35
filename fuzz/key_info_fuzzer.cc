// ASNKeyInfo: read, written, read and written again; copied and compared.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/key_info.h"

KEYASN_FUZZ_TARGET(key_info) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  keyasn_fuzz::CheckStable<ASNKeyInfo>(
      data, size, [] { return ASNKeyInfo(); },
      [](ASNKeyInfo& info, const uint8_t* d, unsigned int s) {
        int err = 0;
        info.ReadData(d, s, &err);
        return err;
      },
      [](const ASNKeyInfo& info) { return info.WriteData(nullptr); });

  ASNKeyInfo info;
  int err = 0;
  (void)info.ReadData(data, n, &err);
  KEYASN_FUZZ_CHECK(err == 0 || keyasn_fuzz::IsLibraryCode(err));
  const int raised = keyasn_fuzz::Guard([&] {
    ASNKeyInfo other;
    other.ReadData(data, n, nullptr);
  });
  KEYASN_FUZZ_CHECK(raised == err);
  ASNKeyInfo copy(info);
  KEYASN_FUZZ_CHECK(copy == info && !(copy != info));
  // A second read over a filled structure.
  (void)info.ReadData(data, n, &err);
  (void)keyasn_fuzz::Guard([&] { (void)info.WriteData(nullptr); });
}
