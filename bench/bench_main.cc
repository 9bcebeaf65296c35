// The benchmark driver: builds the inputs, checks every operation's checksum
// against the generator's, then times the operations that passed (Google
// Benchmark) or, with --callgrind, counts their instructions under callgrind.
#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <regex>
#include <string>
#include <vector>

#include "bench/bench_common.h"
#include "bench/datagen.h"
#include "bench/workloads.h"

namespace bench {

std::vector<Op>& Ops() {
  static std::vector<Op> ops;
  return ops;
}

void AddOp(const char* workload, const char* impl, uint64_t (*pass)(), const uint64_t* expected,
           double items, double bytes, bool keyasn) {
  Ops().push_back(Op{workload, impl, pass, expected, items, bytes, keyasn, {}});
}

}  // namespace bench

namespace {

using bench::Op;

std::string Name(const Op& op) { return op.workload + "/" + op.impl; }

// Verify runs each operation once; a wrong checksum (or an exception) is noted
// and the operation is then reported but never timed.
void Verify() {
  for (Op& op : bench::Ops()) {
    uint64_t got = 0;
    try {
      got = op.pass();
    } catch (const std::exception& e) {
      op.note = std::string("exception: ") + e.what();
    } catch (...) {
      op.note = "exception";
    }
    if (op.note.empty() && got != *op.expected) {
      char text[128];
      std::snprintf(text, sizeof text, "checksum mismatch: %" PRIu64 " instead of %" PRIu64, got,
                    *op.expected);
      op.note = text;
    }
    if (!op.note.empty()) std::fprintf(stderr, "%s: %s\n", Name(op).c_str(), op.note.c_str());
  }
}

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

// Callgrind: one warm-up pass, then the statistics of three passes dumped under
// the operation's name (the run script divides by three).
int RunCallgrind(const std::string& filter) {
  const std::regex re(filter.empty() ? "." : filter);
  for (const Op& op : bench::Ops()) {
    const std::string name = Name(op);
    if (!op.note.empty() || !std::regex_search(name, re)) continue;
    bench::Keep(op.pass());
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < 3; ++i) bench::Keep(op.pass());
    CALLGRIND_DUMP_STATS_AT(name.c_str());
  }
  return 0;
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
    bench::BuildInputs(certs && *certs ? certs : "/etc/ssl/certs/ca-certificates.crt");
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
  Verify();
  if (callgrind) return RunCallgrind(filter);
  for (const Op& op : bench::Ops()) benchmark::RegisterBenchmark(Name(op).c_str(), Run, &op);
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
