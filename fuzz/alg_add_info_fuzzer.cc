// CASNAlgAddInfo: one element taken with ReadObject, its getters, and the
// setters that re-encode it.
#include <string>

#include "fuzz/fuzz_support.h"
#include "keyasn/keys/alg_add_info.h"

namespace {

struct Texts {
  std::string sign, hash, encrypt;
  bool operator==(const Texts& o) const {
    return sign == o.sign && hash == o.hash && encrypt == o.encrypt;
  }
};

Texts Get(const CASNAlgAddInfo& info) {
  return {info.GetSignOID(), info.GetHashOID(), info.GetEncryptOID()};
}

}  // namespace

KEYASN_FUZZ_TARGET(alg_add_info) {
  const unsigned int n = keyasn_fuzz::Size32(size);
  CASNAlgAddInfo info(nullptr, nullptr, nullptr);
  const unsigned int used = info.ReadObject(data, n);
  KEYASN_FUZZ_CHECK(used <= n && info.Count() == used);
  if (used) KEYASN_FUZZ_CHECK(keyasn_fuzz::Same(info, data, used));
  Texts first;
  if (keyasn_fuzz::Guard([&] { first = Get(info); }) != 0) return;
  std::string sign = "-", hash = "-", encrypt = "-";
  (void)keyasn_fuzz::Guard([&] { (void)info.DecodeObject(&sign, &hash, &encrypt); });

  // The texts read back are written and read back unchanged once they have been
  // through the encoder (a text that came from another type is made an
  // identifier first).
  Texts second;
  if (keyasn_fuzz::Guard([&] {
        CASNAlgAddInfo rebuilt(first.sign.c_str(), first.hash.c_str(), first.encrypt.c_str());
        second = Get(rebuilt);
      }) != 0)
    return;  // an identifier too long to encode
  CASNAlgAddInfo again(second.sign.c_str(), second.hash.c_str(), second.encrypt.c_str());
  KEYASN_FUZZ_CHECK(Get(again) == second);

  // The setters keep the other parts.
  (void)keyasn_fuzz::Guard([&] {
    again.SetHashOID(second.sign.c_str());
    KEYASN_FUZZ_CHECK(again.GetSignOID() == second.sign);
    KEYASN_FUZZ_CHECK(again.GetHashOID() == second.sign);
    KEYASN_FUZZ_CHECK(again.GetEncryptOID() == second.encrypt);
  });
  (void)keyasn_fuzz::Guard([&] { info.SetEncryptOID(second.hash.c_str()); });
  (void)keyasn_fuzz::Guard([&] { info.SetSignOID(""); });
}
