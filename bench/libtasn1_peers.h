// The libtasn1 rows of the workloads (see libtasn1_peers.cc).
#ifndef KEYASN_BENCH_LIBTASN1_PEERS_H_
#define KEYASN_BENCH_LIBTASN1_PEERS_H_

#include <cstdint>

namespace bench {

uint64_t Libtasn1Headers();  // W1: asn1_get_tag_der + asn1_get_length_der
uint64_t Libtasn1Split();    // W2: the same walk into vector<vector>
uint64_t Libtasn1Walk();     // W3: recursive walk
uint64_t Libtasn1OidEnc();   // W4: asn1_object_id_der
uint64_t Libtasn1OidDec();   // W4: asn1_get_object_id_der

}  // namespace bench

#endif  // KEYASN_BENCH_LIBTASN1_PEERS_H_
