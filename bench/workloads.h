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
// The keyasn rows that need no peer library (keyasn_codec.cc, keyasn_records.cc):
// the benchmark and the instruction-count gate both register them.
void RegisterKeyasnCodec();    // W1, W2 and its scaling sizes, W4, W5
void RegisterKeyasnRecords();  // the unit tree depths, W6, W7

inline void RegisterAll() {
  RegisterHeaders();
  RegisterSplit();
  RegisterTree();
  RegisterOids();
  RegisterTimes();
  RegisterKeyInfo();
  RegisterIntegers();
  RegisterKeyasnCodec();
  RegisterKeyasnRecords();
}

}  // namespace bench

#endif  // KEYASN_BENCH_WORKLOADS_H_
