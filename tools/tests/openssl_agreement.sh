#!/usr/bin/env bash
# dump agrees with `openssl asn1parse -inform DER -i` on every certificate of the
# system CA bundle, and on every DER sample: the same elements with the same
# offsets, depths, header lengths, contents lengths, constructed flags and tags.
# Usage: openssl_agreement.sh KEYASN [BUNDLE [SAMPLES_DIR]]
set -euo pipefail
keyasn=$1
bundle=${2:-/etc/ssl/certs/ca-certificates.crt}
samples=${3:-}
[ -r "$bundle" ] || { echo "no CA bundle at $bundle"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Split the bundle into one PEM file per certificate.
awk -v dir="$work" '
  /-----BEGIN CERTIFICATE-----/ { n++; file = sprintf("%s/cert%04d.pem", dir, n) }
  file != "" { print > file }
  /-----END CERTIFICATE-----/ { close(file); file = "" }
' "$bundle"

# Both sides become lines "offset depth hl length cons|prim NAME" with the names of
# keyasn's dump.
from_openssl() {
  awk '
    BEGIN {
      map["SEQUENCE"] = "SEQUENCE"; map["SET"] = "SET"; map["INTEGER"] = "INTEGER"
      map["BOOLEAN"] = "BOOLEAN"; map["NULL"] = "NULL"; map["BIT STRING"] = "BIT STRING"
      map["OCTET STRING"] = "OCTET STRING"; map["OBJECT"] = "OBJECT IDENTIFIER"
      map["UTCTIME"] = "UTCTime"; map["GENERALIZEDTIME"] = "GeneralizedTime"
      map["PRINTABLESTRING"] = "PrintableString"; map["UTF8STRING"] = "UTF8String"
      map["IA5STRING"] = "IA5String"; map["T61STRING"] = "T61String"
      map["BMPSTRING"] = "BMPString"; map["UNIVERSALSTRING"] = "UniversalString"
      map["VISIBLESTRING"] = "VisibleString"; map["NUMERICSTRING"] = "NumericString"
      map["GENERALSTRING"] = "GeneralString"; map["ENUMERATED"] = "ENUMERATED"
      map["EOC"] = "EOC"
    }
    {
      if (!match($0, /^ *[0-9]+:d=[0-9]+ +hl=[0-9]+ +l= *([0-9]+|inf) (cons|prim): /)) {
        print "UNPARSED " $0; next
      }
      head = substr($0, 1, RLENGTH); rest = substr($0, RLENGTH + 1)
      gsub(/[:=]/, " ", head); split(head, f, " ")
      # f: offset d depth hl n l length kind
      sub(/^ +/, "", rest); sub(/ *:.*$/, "", rest); sub(/ *\[HEX DUMP\]$/, "", rest); sub(/ +$/, "", rest)
      name = rest
      if (match(name, /^cont \[ *[0-9]+ *\]$/)) { gsub(/[^0-9]/, "", name); name = "[" name "]" }
      else if (match(name, /^appl \[ *[0-9]+ *\]$/)) { gsub(/[^0-9]/, "", name); name = "[APPLICATION " name "]" }
      else if (match(name, /^priv \[ *[0-9]+ *\]$/)) { gsub(/[^0-9]/, "", name); name = "[PRIVATE " name "]" }
      else if (name in map) name = map[name]
      else name = "UNKNOWN(" name ")"
      print f[1], f[3], f[5], f[7], f[8], name
    }'
}

from_keyasn() {
  awk '
    {
      if (!match($0, /^ *[0-9]+ +[0-9]+ +([0-9]+|inf) (cons|prim) /)) { print "UNPARSED " $0; next }
      head = substr($0, 1, RLENGTH); rest = substr($0, RLENGTH + 1)
      split(head, f, " ")
      match(rest, /^ */); depth = RLENGTH / 2; rest = substr(rest, RLENGTH + 1)
      # The name ends where the value begins.
      name = rest
      if (name ~ /^\[/) { sub(/\].*$/, "]", name) }
      else {
        n = split("OBJECT IDENTIFIER|BIT STRING|OCTET STRING|EOC", multi, "|"); found = 0
        for (i = 1; i <= n; i++) if (index(name, multi[i]) == 1) { name = multi[i]; found = 1; break }
        if (!found) sub(/ .*$/, "", name)
      }
      print f[1], depth, f[2], f[3], f[4], name
    }'
}

count=0
for pem in "$work"/cert*.pem; do
  openssl x509 -in "$pem" -outform DER -out "${pem%.pem}.der"
done
if [ -n "$samples" ]; then
  for sample in "$samples"/*.der; do cp "$sample" "$work/sample-$(basename "$sample")"; done
fi
for der in "$work"/*.der; do
  openssl asn1parse -inform DER -i -in "$der" | from_openssl > "$der.openssl"
  "$keyasn" dump --no-encap "$der" | from_keyasn > "$der.keyasn"
  if ! diff -u "$der.openssl" "$der.keyasn" > "$der.diff"; then
    echo "disagreement on $(basename "$der"):"
    head -40 "$der.diff"
    exit 1
  fi
  if grep -q -E 'UNPARSED|UNKNOWN' "$der.openssl"; then
    echo "unexpected openssl output for $(basename "$der"):"; grep -E 'UNPARSED|UNKNOWN' "$der.openssl"
    exit 1
  fi
  count=$((count + 1))
done
[ "$count" -gt 0 ] || { echo "no certificates in $bundle"; exit 1; }
echo "dump agrees with openssl asn1parse on $count files (the certificates of $bundle and the samples)"
