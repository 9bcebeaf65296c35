#!/usr/bin/env bash
# The freshly built library keeps the ABI of the checked-in baseline: no symbol
# removed or changed, no class layout or virtual table changed. New symbols are
# allowed (existing callers do not see them).
# Usage: abi_test.sh LIBRARY BASELINE
set -euo pipefail
lib=$1
baseline=$2
command -v abidiff >/dev/null || { echo "abidiff not found: install abigail-tools (scripts/deps.sh does)"; exit 1; }
if abidiff --no-added-syms "$baseline" "$lib" > abidiff.out 2>&1; then
  echo "ABI ok against $(basename "$baseline")"
  exit 0
fi
cat abidiff.out
echo
echo "The library no longer matches the ABI baseline. If the change is on purpose,"
echo "refresh the baseline with scripts/abi-baseline and record why in CHANGELOG.md."
exit 1
