// The inputs of every workload, built once at start-up, and the checksums that
// every implementation must reproduce. The checksums come from the generation
// parameters or from reference routines here, never from an implementation
// under test.
#ifndef KEYASN_BENCH_DATAGEN_H_
#define KEYASN_BENCH_DATAGEN_H_

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

using Bytes = std::vector<uint8_t>;

// A SEQUENCE of generated items (W2 and its scaling sizes).
struct SplitInput {
  Bytes element;            // the whole SEQUENCE
  unsigned int header = 0;  // its header size: the contents start here
  unsigned int items = 0;
  uint64_t sum = 0;            // (items << 32) + sum of tag numbers
  uint64_t contents_size = 0;  // checksum of the copy-the-contents bound
  const uint8_t* contents() const { return element.data() + header; }
  unsigned int size() const { return static_cast<unsigned int>(element.size()) - header; }
};

// A nested tree SEQUENCE { INTEGER, SEQUENCE { INTEGER, ... } } (unit scaling).
struct TreeInput {
  Bytes element;
  unsigned int depth = 0;
  uint64_t sum = 0;  // the size of the element written back
};

struct TimeValue {
  bool utc;
  std::string text;  // the contents
  Bytes tlv;         // the whole element
};

struct Inputs {
  // W1_header
  Bytes w1;
  uint64_t w1_sum = 0;
  unsigned int w1_short = 0, w1_long1 = 0, w1_long2 = 0;
  // W2_split and its scaling sizes (1k, 10k, 100k items)
  SplitInput w2;
  std::vector<SplitInput> w2_scaling;
  // W3_tree
  std::vector<Bytes> certs;
  uint64_t w3_elements = 0, w3_certs = 0, w3_bytes = 0;
  // W4_oid
  std::vector<std::string> oids;
  std::vector<Bytes> oid_contents, oid_tlv, oid_len_contents;  // the last: length octet + contents
  uint64_t w4_enc = 0, w4_dec = 0;
  // W5_time
  std::vector<TimeValue> times;
  uint64_t w5_sum = 0;
  // W6_keyinfo
  uint32_t ki_flags = 0x11, ki_number = 0x012345;
  std::string ki_oid = "1.2.643.7.1.1.1.1";
  Bytes ki_oid_contents;
  Bytes ki_o1, ki_o2, ki_o3, ki_bits;
  std::string ki_from = "250101000000Z", ki_to = "260101000000Z";
  uint64_t ki_from_ticks = 0, ki_to_ticks = 0;  // the two times as file-time counts
  Bytes w6_der;
  uint64_t w6_enc = 0, w6_dec = 0;
  // W7_integer
  std::vector<int32_t> ints;
  uint64_t w7_sum = 0;
  // unit tree scaling (depth 10, 100, 1000, 10000)
  std::vector<TreeInput> trees;
};

// BuildInputs draws every input but W3's; ReadCerts (datagen_certs.cc, which
// needs OpenSSL) reads W3's from a PEM bundle.
void BuildInputs();
void ReadCerts(const std::string& path);
const Inputs& In();
Inputs& MutableIn();

// Days from 1601-01-01 to the civil date (proleptic Gregorian).
int64_t DaysSince1601(int64_t y, unsigned m, unsigned d);

}  // namespace bench

#endif  // KEYASN_BENCH_DATAGEN_H_
