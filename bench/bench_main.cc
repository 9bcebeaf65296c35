// The benchmark driver: builds the inputs, checks every operation's checksum
// against the generator's, then times the operations that passed (Google
// Benchmark) or, with --callgrind, counts their instructions under callgrind.
#include <benchmark/benchmark.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/workloads.h"

namespace {

using bench::Op;

void Run(benchmark::State& state, const Op* op) {
  if (!op->note.empty()) {
    state.SkipWithError(op->note.c_str());
    return;
  }
  double allocs = 0;
  if (op->keyasn) {
    const uint64_t before = bench::NewCalls();
    bench::Keep(op->pass());
    allocs = static_cast<double>(bench::NewCalls() - before) / op->items;
  }
  for (auto _ : state) bench::Keep(op->pass());
  state.counters["items"] = op->items;
  if (op->keyasn) state.counters["allocs_per_item"] = allocs;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * op->items));
  if (op->bytes > 0) state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * op->bytes));
}

}  // namespace

int main(int argc, char** argv) {
  bool callgrind = false;
  std::string filter;
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--callgrind", 11) == 0) {
      callgrind = true;
      if (argv[i][11] == '=') filter = argv[i] + 12;
    } else {
      args.push_back(argv[i]);
    }
  }
  const char* certs = std::getenv("PERF_CERTS");
  try {
    bench::BuildInputs();
    bench::ReadCerts(certs && *certs ? certs : "/etc/ssl/certs/ca-certificates.crt");
  } catch (const std::exception& e) {
    std::fprintf(stderr, "input generation failed: %s\n", e.what());
    return 1;
  }
  const bench::Inputs& in = bench::In();
  std::fprintf(stderr,
               "inputs: W1 %zu octets (%u short, %u 0x81, %u 0x82 lengths); W2 %u contents "
               "octets; W3 %" PRIu64 " certificates, %" PRIu64 " octets, %" PRIu64 " elements\n",
               in.w1.size(), in.w1_short, in.w1_long1, in.w1_long2, in.w2.size(), in.w3_certs,
               in.w3_bytes, in.w3_elements);
  bench::RegisterAll();
  bench::Verify();
  if (callgrind) return bench::RunCallgrind(filter, nullptr);
  for (const Op& op : bench::Ops()) benchmark::RegisterBenchmark(op.name().c_str(), Run, &op);
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
