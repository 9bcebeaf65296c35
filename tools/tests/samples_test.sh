#!/usr/bin/env bash
# The checked-in samples are exactly what the generator makes: every generated
# file equals the one in samples/, and every sample file is generated.
# Usage: samples_test.sh GENERATOR SOURCE_DIR PARAMSETS
# With KEYASN_UPDATE_SAMPLES=1 the samples are written anew instead.
set -euo pipefail
generator=$1 source=$2 paramsets=$3
if [ "${KEYASN_UPDATE_SAMPLES:-}" = 1 ]; then
  "$generator" "$source/samples" "$paramsets"
  echo "samples written"
  exit 0
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$generator" "$work" "$paramsets"
failures=0
for made in "$work"/*; do
  name=$(basename "$made")
  if [ ! -f "$source/samples/$name" ]; then
    echo "generated $name is not in samples/"; failures=$((failures + 1))
  elif ! cmp -s "$made" "$source/samples/$name"; then
    echo "samples/$name differs from what the generator makes"; failures=$((failures + 1))
  fi
done
for kept in "$source"/samples/*; do
  name=$(basename "$kept")
  case $name in README.md|generate.cc) continue ;; esac
  [ -f "$work/$name" ] || { echo "samples/$name is not generated"; failures=$((failures + 1)); }
done
[ "$failures" -eq 0 ] || exit 1
echo "samples match the generator: $(ls "$work" | wc -l) files"
