// The instruction-count gate's driver: the keyasn rows that need no peer library
// (W3's inputs depend on the machine's certificate bundle, so W3 is left out),
// their checksums verified, then counted under callgrind. Prints
// "name<TAB>items<TAB>allocs per item" per row; bench/gate compares the counts
// with bench/budget.tsv.
#include <cstdio>
#include <exception>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/workloads.h"

int main() {
  try {
    bench::BuildInputs();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "input generation failed: %s\n", e.what());
    return 1;
  }
  bench::RegisterKeyasnCodec();
  bench::RegisterKeyasnRecords();
  if (!bench::Verify()) return 1;
  return bench::RunCallgrind("", stdout);
}
