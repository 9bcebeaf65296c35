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
  // The key descriptions, decoded on request, set and decoded again: after one
  // round (a 32-bit field with its top bit set is written as a negative INTEGER
  // and reads back without sign extension) they stay as they are.
  ASNKeyInfo key, defence;
  (void)keyasn_fuzz::Guard([&] {
    key = info.GetKeyInfo();
    copy.SetKeyInfo(key);
    key = copy.GetKeyInfo();
    copy.SetKeyInfo(key);
    KEYASN_FUZZ_CHECK(copy.GetKeyInfo() == key);
  });
  (void)keyasn_fuzz::Guard([&] {
    defence = info.GetDefenceKeyInfo();
    copy.SetDefenceKeyInfo(defence);
    defence = copy.GetDefenceKeyInfo();
    copy.SetDefenceKeyInfo(defence);
    KEYASN_FUZZ_CHECK(copy.GetDefenceKeyInfo() == defence);
  });
}
