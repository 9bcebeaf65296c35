#!/usr/bin/env bash
# lint on every certificate of the system CA bundle: no error finding (exit
# status 0), and every line a finding (OFFSET SEVERITY RULE MESSAGE) or the summary.
# Usage: lint_ca_bundle.sh KEYASN SOURCE_DIR [BUNDLE]
set -euo pipefail
keyasn=$1
bundle=${3:-/etc/ssl/certs/ca-certificates.crt}
[ -r "$bundle" ] || { echo "no CA bundle at $bundle"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Split the bundle into one DER file per certificate.
awk -v dir="$work" '
  /-----BEGIN CERTIFICATE-----/ { n++; file = sprintf("%s/cert%04d.pem", dir, n) }
  file != "" { print > file }
  /-----END CERTIFICATE-----/ { close(file); file = "" }
' "$bundle"

certificates=0
notes=0
for pem in "$work"/cert*.pem; do
  der=${pem%.pem}.der
  openssl x509 -in "$pem" -outform DER -out "$der"
  certificates=$((certificates + 1))
  name="certificate $certificates of $bundle"
  status=0
  "$keyasn" lint --inform der "$der" > "$work/lint" 2>&1 || status=$?
  if [ "$status" -ne 0 ]; then
    fail "$name: lint exited with $status: $(grep -v ' note ' "$work/lint" | head -3)"
    continue
  fi
  # Each finding line: offset, severity, rule id, message; then the summary.
  if awk 'NR > 0 && !/^ *[0-9]+  (error|note )  [a-z.-]+ +.+$/ && !/^DER: no findings$/ &&
          !/^[0-9]+ findings? \(/ { bad = 1 } END { exit !bad }' "$work/lint"; then
    fail "$name: malformed lint output: $(head -3 "$work/lint")"
  fi
  notes=$((notes + $(grep -c '^ *[0-9]*  note ' "$work/lint" || true)))
done

[ "$certificates" -gt 0 ] || fail "no certificates in $bundle"
if [ "$failures" -ne 0 ]; then echo "$failures failures"; exit 1; fi
echo "lint: no error finding on $certificates certificates ($notes notes)"
