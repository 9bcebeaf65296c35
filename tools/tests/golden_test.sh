#!/usr/bin/env bash
# Golden outputs of dump and show on every sample, and the JSON round trip
# show --json | encode for each, in every output form.
# Usage: golden_test.sh KEYASN SOURCE_DIR
# With KEYASN_UPDATE_GOLDEN=1 the golden files are written anew instead.
set -euo pipefail
keyasn=$1
cd "$2"
golden=tools/tests/golden
exec < /dev/null  # without FILE: the bundled sample, not whatever ctest left on stdin
# Golden outputs name objects from the built-in table only.
export KEYASN_OIDS=none
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# check NAME STATUS COMMAND...: runs the command, expects the exit status, and
# compares its standard output (followed by its standard error, when the status
# is not 0) with $golden/NAME.
check() {
  local name=$1 want=$2; shift 2
  local status=0
  "$@" > "$work/out" 2> "$work/err" || status=$?
  if [ "$status" -ne "$want" ]; then
    fail "$* exited with $status, not $want: $(cat "$work/err")"
    return
  fi
  if [ "$status" -eq 0 ]; then
    if [ -s "$work/err" ]; then fail "$* wrote to stderr: $(cat "$work/err")"; fi
  else
    { echo "# exit status $status, standard error:"; cat "$work/err"; } >> "$work/out"
  fi
  if [ "${KEYASN_UPDATE_GOLDEN:-}" = 1 ]; then
    cp "$work/out" "$golden/$name"
  elif ! diff -u "$golden/$name" "$work/out" > "$work/diff"; then
    fail "$* differs from $golden/$name:"; head -30 "$work/diff"
  fi
}

samples=0
while read -r file type; do
  case $file in ''|'#'*) continue ;; esac
  sample=samples/$file
  [ -f "$sample" ] || { fail "$sample listed in the manifest is missing"; continue; }
  samples=$((samples + 1))
  # The .bin samples are not DER throughout: dump shows the leading elements,
  # then reports the octets that follow.
  dump_status=0
  case $file in *.bin) dump_status=2 ;; esac
  check "$file.dump.txt" $dump_status "$keyasn" dump --inform der "$sample"
  check "$file.dump.json" $dump_status "$keyasn" dump --inform der --json "$sample"
  check "$file.show.txt" 0 "$keyasn" show --as "$type" "$sample"
  check "$file.show.json" 0 "$keyasn" show --as "$type" --json "$sample"
  # The JSON round trip, through each output form and back through input detection.
  "$keyasn" show --as "$type" --json "$sample" > "$work/show.json"
  "$keyasn" encode --as "$type" "$work/show.json" -o "$work/der" || fail "encode --as $type of $sample"
  cmp -s "$work/der" "$sample" || fail "show --json | encode --as $type does not give $sample back"
  "$keyasn" encode --as "$type" --outform pem < "$work/show.json" > "$work/pem" || fail "encode pem"
  "$keyasn" encode --as "$type" --outform hex - < "$work/show.json" > "$work/hex" || fail "encode hex"
  for form in pem hex; do
    "$keyasn" show --as "$type" --json --inform "$form" "$work/$form" > "$work/again.json" || fail "show of the $form form"
    cmp -s "$work/again.json" "$work/show.json" || fail "the $form form of $sample shows differently"
  done
done < "$golden/manifest.txt"

# Without FILE both commands work on the bundled sample container.
check container.der.dump.txt 0 "$keyasn" dump
"$keyasn" show > "$work/bundled"
sed 1d "$work/bundled" > "$work/bundled.members"
sed 1d "$golden/container.der.show.txt" > "$work/file.members"
cmp -s "$work/bundled.members" "$work/file.members" || fail "keyasn show differs from show of samples/container.der"
grep -q '^# ASNContainerInfo (container) from <bundled sample>$' "$work/bundled" || fail "bundled show header"

[ "$samples" -gt 0 ] || fail "no samples"
if [ "$failures" -ne 0 ]; then echo "$failures failures"; exit 1; fi
echo "golden outputs and round trips agree for $samples samples"
