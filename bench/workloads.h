// Each workload file lists its operations; RegisterAll lists those whose keyasn
// API is part of this build.
#ifndef KEYASN_BENCH_WORKLOADS_H_
#define KEYASN_BENCH_WORKLOADS_H_

namespace bench {

void RegisterHeaders();   // W1_header
void RegisterSplit();     // W2_split and its scaling sizes
void RegisterTree();      // W3_tree and the unit tree scaling depths
void RegisterOids();      // W4_oid_enc, W4_oid_dec
void RegisterTimes();     // W5_time
void RegisterKeyInfo();   // W6_keyinfo_enc, W6_keyinfo_dec
void RegisterIntegers();  // W7_integer

inline void RegisterAll() {
  RegisterHeaders();
#ifdef BENCH_HAVE_RECORD
  RegisterSplit();
  RegisterTree();
#endif
  RegisterOids();
  RegisterTimes();
#ifdef BENCH_HAVE_KEYS
  RegisterKeyInfo();
#endif
#ifdef BENCH_HAVE_DER
  RegisterIntegers();
#endif
}

}  // namespace bench

#endif  // KEYASN_BENCH_WORKLOADS_H_
