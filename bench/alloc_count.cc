// Replaces the global operator new of the benchmark binary to count its calls:
// the allocations per item of the keyasn rows come from this counter. The
// library calls the same global operator new through the dynamic linker.
#include <cstdlib>
#include <new>

#include "bench/bench_common.h"

namespace {
uint64_t g_new_calls = 0;  // the benchmark runs on one thread

void* Allocate(std::size_t size) {
  ++g_new_calls;
  if (size == 0) size = 1;
  if (void* p = std::malloc(size)) return p;
  throw std::bad_alloc();
}
}  // namespace

namespace bench {
uint64_t NewCalls() { return g_new_calls; }
}  // namespace bench

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++g_new_calls;
  return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  ++g_new_calls;
  return std::malloc(size ? size : 1);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
