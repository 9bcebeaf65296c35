// Shared pieces of the benchmark: the input generator's random numbers, the
// checksum hash, the list of operations and the allocation counter.
#ifndef KEYASN_BENCH_BENCH_COMMON_H_
#define KEYASN_BENCH_BENCH_COMMON_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

// Rng: splitmix64. Every input is drawn from it, in the order the workload
// definitions give, so that all implementations see the same octets.
class Rng {
 public:
  explicit Rng(uint64_t seed) : state_(seed) {}
  uint64_t next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // below(n): a number in [0, n), from the high 32 bits.
  uint32_t below(uint32_t n) { return static_cast<uint32_t>(((next() >> 32) * n) >> 32); }
  uint8_t byte() { return static_cast<uint8_t>(next() >> 56); }

 private:
  uint64_t state_;
};

constexpr uint64_t kFnvBasis = 0xCBF29CE484222325ull;
constexpr uint64_t kFnvPrime = 0x100000001B3ull;

// Fnv1a continues the FNV-1a 64 hash `h` over `n` octets.
inline uint64_t Fnv1a(uint64_t h, const void* data, size_t n) {
  const unsigned char* p = static_cast<const unsigned char*>(data);
  for (size_t i = 0; i < n; ++i) {
    h ^= p[i];
    h *= kFnvPrime;
  }
  return h;
}

// The checksum terms that several implementations of a workload share.
// W1: one header.
inline uint64_t HeaderTerm(unsigned int identifier, uint64_t length) {
  return uint64_t{identifier} * 65537 + length + (uint64_t{1} << 40);
}
// W4 dec: one text and its line end.
inline uint64_t HashText(uint64_t h, const void* text, size_t n) {
  h = Fnv1a(h, text, n);
  return Fnv1a(h, "\n", 1);
}
// W7: one decoded value and the size of its element.
inline uint64_t IntegerTerm(int64_t value, size_t tlv) {
  return static_cast<uint64_t>(value) + (uint64_t{tlv} << 32);
}

// One workload x implementation: `pass` runs over the whole input once and
// returns the checksum, which must equal `*expected` before anything is timed.
struct Op {
  std::string workload;  // "W1_header"
  std::string impl;      // "keyasn", "mbedtls", ...
  uint64_t (*pass)();
  const uint64_t* expected;
  double items;      // items per pass
  double bytes;      // input octets per pass (0: no MB/s)
  bool keyasn;       // count operator new calls
  std::string note;  // set when the checksum did not match
  std::string name() const { return workload + "/" + impl; }
};

std::vector<Op>& Ops();

// AddOp lists an operation; `expected` points at the generator's value.
void AddOp(const char* workload, const char* impl, uint64_t (*pass)(), const uint64_t* expected,
           double items, double bytes, bool keyasn);

// Verify runs every operation once and notes those whose checksum is wrong;
// false when any is. RunCallgrind counts the instructions of the operations
// whose name matches `filter` (ops.cc).
bool Verify();
int RunCallgrind(const std::string& filter, std::FILE* allocs);

// The number of global operator new calls made so far in this process.
uint64_t NewCalls();

// Keeps a value alive so that the compiler cannot drop the work that made it.
template <class T>
inline void Keep(T const& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench

#endif  // KEYASN_BENCH_BENCH_COMMON_H_
