// The keyasn rows of the unit tree depths, W6 and W7. They use the library
// alone, so the instruction-count gate (bench/gate) runs them too.
#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/workloads.h"
#include "keyasn/der/der_helper.h"
#include "keyasn/keys/key_info.h"
#include "keyasn/record/unit.h"

namespace bench {

namespace {

// The unit tree read and written back: the whole element must come out again.
template <int kIndex>
uint64_t UnitTree() {
  const TreeInput& t = In().trees[kIndex];
  CASNTUnit unit;
  int error = 0;
  unit.ReadData(t.element.data(), static_cast<unsigned int>(t.element.size()), &error);
  if (error != 0) return 0;
  const IdentObj out = unit.WriteData(&error);
  if (error != 0) return 0;
  return out.Count();
}

const ASNKeyInfo& Filled() {
  static const ASNKeyInfo ki = [] {
    const Inputs& in = In();
    ASNKeyInfo k;
    k.Flags = in.ki_flags;
    k.Number = in.ki_number;
    k.AlgorithmId.SetObjID(
        IdentObj(in.ki_oid_contents.data(), static_cast<unsigned int>(in.ki_oid_contents.size())));
    k.Octets1.Assign(in.ki_o1.data(), static_cast<unsigned int>(in.ki_o1.size()));
    k.Octets2.Assign(in.ki_o2.data(), static_cast<unsigned int>(in.ki_o2.size()));
    k.Octets3.Assign(in.ki_o3.data(), static_cast<unsigned int>(in.ki_o3.size()));
    k.Validity.SetTime(CRUVFileTime(static_cast<unsigned long>(in.ki_from_ticks)),
                       CRUVFileTime(static_cast<unsigned long>(in.ki_to_ticks)));
    k.KeyBits =
        CRUVCryptBitBlob(in.ki_bits.data(), static_cast<unsigned int>(in.ki_bits.size()), 0);
    return k;
  }();
  return ki;
}

uint64_t KeyInfoEnc() {
  int error = 0;
  const IdentObj out = Filled().WriteData(&error);
  if (error != 0) return 0;
  return Fnv1a(kFnvBasis, out.GetData(), out.Count());
}

uint64_t KeyInfoDec() {
  const Bytes& der = In().w6_der;
  ASNKeyInfo ki;
  int error = 0;
  ki.ReadData(der.data(), static_cast<unsigned int>(der.size()), &error);
  if (error != 0) return 0;
  auto part = [](const IdentObj& o) -> uint64_t {
    return o.Count() + (o.Count() ? o.GetData()[0] : 0);
  };
  return uint64_t{ki.Flags} + ki.Number + (ki.AlgorithmId.GetObjID().Count() ? 1 : 0) +
         part(ki.Octets1) + part(ki.Octets2) + part(ki.Octets3) + part(ki.KeyBits) +
         ki.KeyBits.GetUnusedBits();
}

uint64_t Integers() {
  uint64_t sum = 0;
  for (const int32_t v : In().ints) {
    const IdentObj element = DerHelper::EncodeInteger(v);
    const int value = DerHelper::DecodeInteger(element, false);
    sum += IntegerTerm(value, element.Count());
  }
  return sum;
}

}  // namespace

void RegisterKeyasnRecords() {
  const Inputs& in = In();
  static const char* const kNames[4] = {"unit_tree_depth_10", "unit_tree_depth_100",
                                        "unit_tree_depth_1000", "unit_tree_depth_10000"};
  static uint64_t (*const kOps[4])() = {UnitTree<0>, UnitTree<1>, UnitTree<2>, UnitTree<3>};
  for (int i = 0; i < 4; ++i) {
    const TreeInput& t = in.trees[i];
    AddOp(kNames[i], "keyasn", kOps[i], &t.sum, t.depth, static_cast<double>(t.element.size()),
          true);
  }
  AddOp("W6_keyinfo_enc", "keyasn", KeyInfoEnc, &in.w6_enc, 1, 0, true);
  AddOp("W6_keyinfo_dec", "keyasn", KeyInfoDec, &in.w6_dec, 1, 0, true);
  AddOp("W7_integer", "keyasn", Integers, &in.w7_sum, static_cast<double>(in.ints.size()), 0,
        true);
}

}  // namespace bench
