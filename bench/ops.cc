// The list of operations, their checksum check, and the callgrind counting that
// the benchmark (--callgrind) and the instruction-count gate share.
#include <valgrind/callgrind.h>

#include <cinttypes>
#include <cstdio>
#include <exception>
#include <regex>
#include <string>
#include <vector>

#include "bench/bench_common.h"

namespace bench {

std::vector<Op>& Ops() {
  static std::vector<Op> ops;
  return ops;
}

void AddOp(const char* workload, const char* impl, uint64_t (*pass)(), const uint64_t* expected,
           double items, double bytes, bool keyasn) {
  Ops().push_back(Op{workload, impl, pass, expected, items, bytes, keyasn, {}});
}

// Each operation runs once; a wrong checksum (or an exception) is noted, and the
// operation is then reported but never measured.
bool Verify() {
  bool all = true;
  for (Op& op : Ops()) {
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
    if (!op.note.empty()) {
      std::fprintf(stderr, "%s: %s\n", op.name().c_str(), op.note.c_str());
      all = false;
    }
  }
  return all;
}

// One warm-up pass (its operator new calls per item go to `allocs` as
// "name<TAB>items<TAB>allocs per item" when given), then the statistics of
// three passes dumped under the operation's name (the readers divide by three).
int RunCallgrind(const std::string& filter, std::FILE* allocs) {
  const std::regex re(filter.empty() ? "." : filter);
  for (const Op& op : Ops()) {
    const std::string name = op.name();
    if (!op.note.empty() || !std::regex_search(name, re)) continue;
    const uint64_t before = NewCalls();
    Keep(op.pass());
    if (allocs)
      std::fprintf(allocs, "%s\t%.0f\t%.6f\n", name.c_str(), op.items,
                   static_cast<double>(NewCalls() - before) / op.items);
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < 3; ++i) Keep(op.pass());
    CALLGRIND_DUMP_STATS_AT(name.c_str());
  }
  return 0;
}

}  // namespace bench
