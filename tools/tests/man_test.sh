#!/usr/bin/env bash
# The manual page renders without warnings at 80 columns and documents every
# option of --help; the completion script is valid bash that offers them too.
# Usage: man_test.sh MANPAGE COMPLETION KEYASN
set -uo pipefail
page=$1 completion=$2 keyasn=$3
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
if ! command -v man > /dev/null || ! command -v groff > /dev/null; then
  echo "man or groff is missing (Debian: man-db, groff-base; scripts/deps.sh installs them): not checked"
  exit 0
fi
warnings=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 > /dev/null)
[ -z "$warnings" ] || fail "man --warnings: $warnings"
text=$(MANWIDTH=80 man -l "$page" 2> /dev/null)
for section in NAME SYNOPSIS COMMANDS OPTIONS "EXIT STATUS" EXAMPLES "SEE ALSO"; do
  grep -q "^$section" <<< "$text" || fail "no $section section"
done
grep -q "dumpasn1(1)" <<< "$text" || fail "SEE ALSO dumpasn1(1)"
grep -q "openssl-asn1parse(1)" <<< "$text" || fail "SEE ALSO openssl-asn1parse(1)"
for command in dump extract lint show view encode; do
  grep -q -- "$command" <<< "$text" || fail "the manual lacks $command"
  grep -q -- "$command" "$completion" || fail "the completion lacks $command"
  for option in $("$keyasn" "$command" --help | grep -o -E '^ +(-[a-z],)?--[a-z-]+' | sed 's/.*--/--/'); do
    grep -q -- "$option" <<< "$text" || fail "the manual lacks $command $option"
    grep -q -- "$option" "$completion" || fail "the completion lacks $command $option"
  done
done
bash -n "$completion" || fail "the completion script is not valid bash"
if [ "$failures" -ne 0 ]; then echo "$failures failures"; exit 1; fi
echo "manual page and completion agree with --help"
