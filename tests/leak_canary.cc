// Leaks one block on purpose and asks LeakSanitizer to look: the sanitizer build's
// tests expect the report, which shows that the leak check (detect_leaks=1) is in
// effect for the whole suite. The block is freed afterwards so that the check at
// exit stays quiet.
#include <sanitizer/lsan_interface.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {
// The block's address, disguised so that no live pointer reaches it.
volatile std::uintptr_t disguised = 0;
constexpr std::uintptr_t kMask = 0x5A5A5A5A5A5A5A5Au;
}  // namespace

int main() {
  disguised = reinterpret_cast<std::uintptr_t>(std::malloc(64)) ^ kMask;
  const int leaks = __lsan_do_recoverable_leak_check();
  std::free(reinterpret_cast<void*>(disguised ^ kMask));
  std::printf("leak check reported %d\n", leaks);
  return leaks ? 0 : 1;
}
