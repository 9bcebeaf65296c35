#!/usr/bin/env bash
# lint on every certificate of the system CA bundle, beside dumpasn1's checks of
# the same octets: lint reports no error that dumpasn1 does not also report at
# the same offset, and every complaint of either tool is either shared or listed
# below with the reason the two differ. Without dumpasn1 (and not root, so it
# cannot be installed) only "no error finding on any certificate" is checked.
# Usage: lint_ca_bundle.sh KEYASN SOURCE_DIR [BUNDLE]
set -euo pipefail
keyasn=$1
source_dir=$2
bundle=${3:-/etc/ssl/certs/ca-certificates.crt}
[ -r "$bundle" ] || { echo "no CA bundle at $bundle"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

oracle=1
if ! command -v dumpasn1 > /dev/null; then
  bash "$source_dir/scripts/deps.sh" dumpasn1 > /dev/null 2>&1 || true
  if ! command -v dumpasn1 > /dev/null; then
    echo "SKIPPING the comparison with dumpasn1: not installed, and only root can install it" \
         "(apt-get install dumpasn1)"
    oracle=0
  fi
fi

# Each dumpasn1 complaint as the lint rule it stands for; `-` for complaints with
# no rule, which are differences with their reason in `reason_for`.
rule_for() {
  case $1 in
    *"Spurious zero bits"*) echo bitstring.trailing-zero ;;
    *"Spurious one bits"*) echo bitstring.unused-nonzero ;;
    *"unused bits"* | *"unused-bits"*) echo bitstring.unused-range ;;
    *"Time is encoded incorrectly"*) echo time ;;
    *"PrintableString contains illegal"*) echo string.printable ;;
    *"IA5String contains illegal"*) echo string.ia5 ;;
    *"Spurious EOC"*) echo eoc.misplaced ;;
    *"BOOLEAN"*"non-DER"*) echo boolean.value ;;
    *"Integer"*"non-DER"*) echo integer.non-minimal ;;
    *"Length"*"non-canonical"*) echo length.non-minimal ;;
    *"OID"*) echo oid ;;
    *) echo - ;;
  esac
}
reason_for() {
  case $1 in
    *"32-bit time_t"*) echo "dumpasn1's time_t limit: the time is valid DER" ;;
    *"twenty years"* | *"half a century"*) echo "a plausibility warning on the date, not an encoding rule" ;;
    *"negative value"*) echo "schema-dependent: a negative INTEGER is valid DER" ;;
    *) echo "" ;;
  esac
}
# Lint notes that dumpasn1 may not share, with the reason.
note_reason() {
  case $1 in
    bitstring.trailing-zero) echo "schema-dependent: only a named bit list drops trailing zero bits" ;;
    *) echo "" ;;
  esac
}

# Split the bundle into one DER file per certificate.
awk -v dir="$work" '
  /-----BEGIN CERTIFICATE-----/ { n++; file = sprintf("%s/cert%04d.pem", dir, n) }
  file != "" { print > file }
  /-----END CERTIFICATE-----/ { close(file); file = "" }
' "$bundle"

certificates=0
shared=0
: > "$work/differences"
for pem in "$work"/cert*.pem; do
  der=${pem%.pem}.der
  openssl x509 -in "$pem" -outform DER -out "$der"
  certificates=$((certificates + 1))
  name="certificate $certificates of $bundle"
  status=0
  "$keyasn" lint --inform der "$der" > "$work/lint" 2>&1 || status=$?
  # "OFFSET RULE SEVERITY" per finding.
  awk '$2 == "error" || $2 == "note" { print $1, $3, $2 }' "$work/lint" > "$work/found"
  if [ "$status" -ne 0 ] && [ "$status" -ne 4 ]; then
    fail "$name: lint exited with $status: $(head -3 "$work/lint")"
    continue
  fi
  if [ "$oracle" -eq 0 ]; then
    [ "$status" -eq 0 ] || fail "$name: $(grep ' error ' "$work/lint" | head -3)"
    continue
  fi
  # "OFFSET COMPLAINT" per dumpasn1 complaint, the offset of the element above it.
  { dumpasn1 -z "$der" 2>&1 || true; } | awk '
    match($0, /^ *[0-9]+ +([0-9]+|NDEF):/) { split($0, f, " "); offset = f[1]; next }
    /(Error|Warning): / { sub(/^.*(Error|Warning): /, ""); print offset, $0 }
  ' > "$work/complaints"
  while read -r offset complaint; do
    rule=$(rule_for "$complaint")
    if [ "$rule" = - ]; then
      reason=$(reason_for "$complaint")
      if [ -n "$reason" ]; then
        echo "dumpasn1 only: \"$complaint\": $reason" >> "$work/differences"
      else
        fail "$name: dumpasn1 at offset $offset: \"$complaint\", which lint does not report"
      fi
    elif grep -q -E "^$offset ($rule|$rule[.a-z-]*|[a-z]*$rule[.a-z-]*) " "$work/found"; then
      shared=$((shared + 1))
    else
      fail "$name: dumpasn1 at offset $offset: \"$complaint\", but lint has no $rule there"
    fi
  done < "$work/complaints"
  while read -r offset rule severity; do
    agreed=0
    while read -r at complaint; do
      mapped=$(rule_for "$complaint")
      if [ "$at" = "$offset" ] && [ "$mapped" != - ] && [[ $rule == *"$mapped"* ]]; then agreed=1; fi
    done < "$work/complaints"
    [ "$agreed" -eq 1 ] && continue
    reason=$(note_reason "$rule")
    if [ "$severity" = note ] && [ -n "$reason" ]; then
      echo "lint only: $rule: $reason" >> "$work/differences"
    else
      fail "$name: lint $severity $rule at offset $offset, which dumpasn1 does not report"
    fi
  done < "$work/found"
done

[ "$certificates" -gt 0 ] || fail "no certificates in $bundle"
if [ -s "$work/differences" ]; then
  echo "differences between lint and dumpasn1 (count, what, why):"
  sort "$work/differences" | uniq -c
fi
if [ "$failures" -ne 0 ]; then echo "$failures failures"; exit 1; fi
echo "lint: no error finding on $certificates certificates; $shared findings shared with dumpasn1"
