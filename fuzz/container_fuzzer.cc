// ASNContainerInfo: read, written, read and written again; its two key
// descriptions decoded on request.
#include "fuzz/fuzz_support.h"
#include "fuzz/structure_check.h"
#include "keyasn/keys/container_info.h"
#include "keyasn/keys/key_info.h"

KEYASN_FUZZ_TARGET(container) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  keyasn_fuzz::CheckStable<ASNContainerInfo>(
      data, size, [] { return ASNContainerInfo(); },
      [](ASNContainerInfo& info, const uint8_t* d, unsigned int s) {
        int err = 0;
        info.ReadData(d, s, &err);
        return err;
      },
      [](const ASNContainerInfo& info) {
        int err = 0;
        IdentObj out = info.WriteData(&err);
        KEYASN_FUZZ_CHECK(err == 0 || keyasn_fuzz::IsLibraryCode(err));
        return out;
      });

  ASNContainerInfo info;
  int err = 0;
  // The contents of a [1] item are read with a raising record read, whose status
  // escapes even when an error pointer is given.
  const int escaped = keyasn_fuzz::Guard([&] { (void)info.ReadData(data, n, &err); });
  KEYASN_FUZZ_CHECK(err == 0 || keyasn_fuzz::IsLibraryCode(err));
  const int raised = keyasn_fuzz::Guard([&] {
    ASNContainerInfo other;
    other.ReadData(data, n, nullptr);
  });
  KEYASN_FUZZ_CHECK(raised == (escaped != 0 ? escaped : err));
  ASNContainerInfo copy(info);
  KEYASN_FUZZ_CHECK(copy == info && !(copy != info));
  // The key descriptions, decoded on request, set again and decoded again.
  ASNKeyInfo key, defence;
  const int keyRaised = keyasn_fuzz::Guard([&] { key = info.GetKeyInfo(); });
  const int defenceRaised = keyasn_fuzz::Guard([&] { defence = info.GetDefenceKeyInfo(); });
  if (keyRaised == 0 && keyasn_fuzz::Guard([&] { copy.SetKeyInfo(key); }) == 0)
    (void)keyasn_fuzz::Guard([&] { KEYASN_FUZZ_CHECK(copy.GetKeyInfo() == key); });
  if (defenceRaised == 0 && keyasn_fuzz::Guard([&] { copy.SetDefenceKeyInfo(defence); }) == 0)
    (void)keyasn_fuzz::Guard([&] { KEYASN_FUZZ_CHECK(copy.GetDefenceKeyInfo() == defence); });
}
