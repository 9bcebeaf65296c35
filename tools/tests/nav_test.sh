#!/usr/bin/env bash
# Navigation and round trips at the command line: dump --offset and extract agree
# with `openssl asn1parse -strparse N -out F` on every constructed element of
# every certificate of the CA bundle; dump --json | encode gives every
# certificate and sample back, and edited values the DER that openssl -genstr
# writes; pipes; show refusing other TYPEs; --oids; the tool's manners.
# Usage: nav_test.sh KEYASN SOURCE_DIR [BUNDLE [STEP]]
# STEP N checks every Nth certificate only (the sanitizer build passes 10).
set -uo pipefail
keyasn=$1
cd "$2"
bundle=${3:-/etc/ssl/certs/ca-certificates.crt}
step=${4:-1}
exec < /dev/null
export KEYASN_OIDS=none
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
checks=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
check() { checks=$((checks + 1)); "$@" || fail "$*"; }

awk -v dir="$work" '
  /-----BEGIN CERTIFICATE-----/ { n++; file = sprintf("%s/cert%04d.pem", dir, n) }
  file != "" { print > file }
  /-----END CERTIFICATE-----/ { close(file); file = "" }
' "$bundle"
certs=0
seen=0
for pem in "$work"/cert*.pem; do
  seen=$((seen + 1))
  [ $(((seen - 1) % step)) -eq 0 ] || continue
  der=${pem%.pem}.der
  openssl x509 -in "$pem" -outform DER -out "$der"
  certs=$((certs + 1))
  # Every constructed element: extract = openssl's -strparse output, and dump
  # --offset shows that element's lines of the whole dump, indented from zero.
  "$keyasn" dump --no-encap "$der" > "$work/all.txt"
  while read -r offset _ _ kind _; do
    [ "$kind" = cons ] || continue
    # openssl takes no -strparse 0: the element at 0 is the whole certificate.
    if [ "$offset" -eq 0 ]; then cp "$der" "$work/o.der"; else
    openssl asn1parse -inform DER -in "$der" -strparse "$offset" -out "$work/o.der" > /dev/null 2>&1 ||
      { fail "openssl -strparse $offset on $der"; continue; }; fi
    "$keyasn" extract --offset "$offset" "$der" > "$work/k.der" || fail "extract --offset $offset $der"
    cmp -s "$work/o.der" "$work/k.der" || fail "extract --offset $offset of $der differs from openssl"
    "$keyasn" dump --no-encap --offset "$offset" "$der" > "$work/sub.txt" || fail "dump --offset $offset $der"
    cut -c1-22 "$work/sub.txt" > "$work/sub.cols"
    awk -v o="$offset" '$1 + 0 >= o' "$work/all.txt" | head -n "$(wc -l < "$work/sub.txt")" | cut -c1-22 > "$work/all.cols"
    cmp -s "$work/sub.cols" "$work/all.cols" || fail "dump --offset $offset of $der is not that part of the dump"
    checks=$((checks + 1))
  done < "$work/all.txt"
  # Primitive contents: extract --contents = openssl's -strparse of a string.
  if [ "$certs" -le 10 ]; then
    while read -r offset _ _ kind rest; do
      case $rest in "BIT STRING"*|"OCTET STRING"*|INTEGER*) ;; *) continue ;; esac
      openssl asn1parse -inform DER -in "$der" -strparse "$offset" -out "$work/o.der" > /dev/null 2>&1 || continue
      "$keyasn" extract --contents --offset "$offset" "$der" > "$work/k.der"
      cmp -s "$work/o.der" "$work/k.der" || fail "extract --contents --offset $offset of $der differs from openssl"
    done < "$work/all.txt"
  fi
  "$keyasn" dump --json "$der" | "$keyasn" encode > "$work/back.der" || fail "encode of $der's JSON"
  cmp -s "$work/back.der" "$der" || fail "dump --json | encode does not give $der back"
done
[ "$certs" -gt 0 ] || fail "no certificates in $bundle"

# Samples and BER come back from their JSON.
for sample in samples/*.der; do
  "$keyasn" dump --json "$sample" | "$keyasn" encode --as der > "$work/back.der"
  check cmp -s "$work/back.der" "$sample"
done
for hex in "3080020105 0000" "2480 0402ABCD 0000" "3081030201 05" "5F2001 00" "0500 0500"; do
  echo "$hex" | xxd -r -p > "$work/ber.der"
  "$keyasn" dump --json "$work/ber.der" | "$keyasn" encode > "$work/back.der"
  check cmp -s "$work/back.der" "$work/ber.der"
done

# Edited values: the DER openssl -genstr writes for them, lengths recomputed.
openssl asn1parse -genstr 'INTEGER:5' -out "$work/int.der" > /dev/null
"$keyasn" dump --json "$work/int.der" | sed 's/"value": "5"/"value": "-1234567890123"/' |
  "$keyasn" encode > "$work/edited.der"
openssl asn1parse -genstr 'INTEGER:-1234567890123' -out "$work/want.der" > /dev/null
check cmp -s "$work/edited.der" "$work/want.der"
printf 'asn1=SEQUENCE:s\n[s]\noid=OID:1.2.3\nn=NULL\n' > "$work/seq.cnf"
openssl asn1parse -genconf "$work/seq.cnf" -out "$work/seq.der" > /dev/null
"$keyasn" dump --json "$work/seq.der" | sed 's/"value": "1.2.3"/"value": "1.2.840.113549.1.1.11"/' |
  "$keyasn" encode > "$work/edited.der"
printf 'asn1=SEQUENCE:s\n[s]\noid=OID:1.2.840.113549.1.1.11\nn=NULL\n' > "$work/want.cnf"
openssl asn1parse -genconf "$work/want.cnf" -out "$work/want.der" > /dev/null
check cmp -s "$work/edited.der" "$work/want.der"

# Pipes: the same as the file; nothing on standard input: the bundled sample.
first=$(ls "$work"/cert*.der | head -1)
"$keyasn" dump "$first" > "$work/file.txt"
cat "$first" | "$keyasn" dump > "$work/pipe.txt"
check cmp -s "$work/file.txt" "$work/pipe.txt"
"$keyasn" dump < "$first" > "$work/redirect.txt"
check cmp -s "$work/file.txt" "$work/redirect.txt"
"$keyasn" dump < /dev/null > "$work/null.txt"
"$keyasn" dump samples/container.der > "$work/sample.txt"
check cmp -s "$work/null.txt" "$work/sample.txt"
cat samples/validity.der | "$keyasn" show --as validity > /dev/null || fail "show --as from a pipe"

# show --as T refuses every other TYPE's sample and a certificate, except where
# the octets really are a T: export-key is any SEQUENCE of one or two elements,
# and an algorithm identifier is an OID with parameters, as the GOST parameter
# sets are.
overlap() {
  case "$1:$2" in
    export-key:algorithm_identifier.der|export-key:validity.der|export-key:encrypted_key.der|\
    export-key:public_key_info.der|export-key:exchange_key.der|export-key:proxy_exchange.der|\
    export-key:cryptoki_element.der|export-key:encr_params_*.der|algid:encr_params_*.der) return 0 ;;
  esac
  return 1
}
grep -v '^#' tools/tests/golden/manifest.txt | awk 'NF == 2' > "$work/manifest"
cp "$first" "$work/cert.der"
for type in $(awk '{print $2}' "$work/manifest" | sort -u); do
  while read -r file own; do
    [ "$own" = "$type" ] && continue
    status=0
    "$keyasn" show --as "$type" "samples/$file" > /dev/null 2> "$work/err" || status=$?
    if overlap "$type" "$file"; then
      [ "$status" -eq 0 ] || fail "show --as $type $file: the overlap is refused: $(cat "$work/err")"
    else
      [ "$status" -eq 2 ] || fail "show --as $type $file exited $status, not 2"
    fi
    checks=$((checks + 1))
  done < "$work/manifest"
  status=0
  "$keyasn" show --as "$type" "$work/cert.der" > /dev/null 2>&1 || status=$?
  [ "$status" -eq 2 ] || fail "show --as $type of a certificate exited $status, not 2"
done
"$keyasn" show --as validity "$work/cert.der" > /dev/null 2> "$work/err"
grep -q "not a validity (CASNValid): a validity period is a SEQUENCE of two times" "$work/err" ||
  fail "validity refusal: $(cat "$work/err")"
"$keyasn" show --as validity --force "$work/cert.der" > /dev/null 2>&1 || fail "--force"

# Offsets that are not element starts; extract's forms.
"$keyasn" dump --offset 1 "$first" > /dev/null 2> "$work/err"; check test $? -eq 2
grep -q "offset 1 is not the start of an element (nearest starts: 0 before and 4 after)" "$work/err" ||
  fail "offset message: $(cat "$work/err")"
"$keyasn" extract --offset 0 --outform pem "$first" | grep -q "BEGIN KEYASN ELEMENT" || fail "extract pem"
"$keyasn" extract --offset 0 --outform hex "$first" -o "$work/x.hex"
"$keyasn" dump "$work/x.hex" > "$work/hex.txt"; check cmp -s "$work/hex.txt" "$work/file.txt"
"$keyasn" dump --depth 1 "$first" | grep -q "^ *\.\.\. [0-9]* elements$" || fail "--depth 1"
"$keyasn" dump --octets 0 "$first" | grep -q "\.\.\. (" && fail "--octets 0 shortened"
"$keyasn" dump --octets 4 "$first" | grep -q "^.*BIT STRING.*[0-9A-F]\{8\}\.\.\. (" || fail "--octets 4"

# Object identifier names from files, both formats; none.
printf 'OID = 2 5 4 3\nDescription = theCommonName\n' > "$work/d.cfg"
printf '2.5.4.6 C theCountry\n1.2.643.2.2.19 g notTheGostName\n' > "$work/o.txt"
"$keyasn" dump --oids "$work/d.cfg" --oids "$work/o.txt" "$first" > "$work/names.txt"
grep -q "2.5.4.3 (theCommonName)" "$work/names.txt" || fail "--oids dumpasn1 format"
grep -q "2.5.4.6 (theCountry)" "$work/names.txt" || fail "--oids openssl format"
"$keyasn" dump --oids "$work/o.txt" --inform der samples/public_key_info.der | grep -q "notTheGostName" &&
  fail "a file's name won over the built-in GOST name"
echo "OID = zz" > "$work/bad.cfg"
"$keyasn" dump --oids "$work/bad.cfg" "$first" > /dev/null 2> "$work/err"; check test $? -eq 2
grep -q "^keyasn: $work/bad.cfg: line 1" "$work/err" || fail "bad names file: $(cat "$work/err")"

# Manners: keyasn: on every message, usage included; the output named on a write
# error; forms as words and examples in --help; the library's version.
"$keyasn" dump --bogus 2> "$work/err"; check test $? -eq 1
grep -v -q '^keyasn: ' "$work/err" && fail "usage message without keyasn: $(cat "$work/err")"
"$keyasn" dump --help > "$work/help"
grep -q "der, pem, base64 or hex" "$work/help" || fail "forms in words"
grep -q -e "->" "$work/help" && fail "help shows CLI11's enum text"
"$keyasn" --help | grep -q "^EXAMPLES:" || fail "EXAMPLES"
"$keyasn" --version | grep -q "^libkeyasn [0-9]" || fail "library version"
if [ -w /dev/full ]; then
  "$keyasn" dump "$first" > /dev/full 2> "$work/err"; check test $? -eq 3
  grep -q "^keyasn: <stdout>: cannot write" "$work/err" || fail "write error: $(cat "$work/err")"
  "$keyasn" extract --offset 0 "$first" -o /dev/full 2> "$work/err"; check test $? -eq 3
  grep -q "^keyasn: /dev/full: cannot write" "$work/err" || fail "write error: $(cat "$work/err")"
fi
echo "hello world" > "$work/hello.txt"
"$keyasn" dump "$work/hello.txt" > /dev/null 2> "$work/err"; check test $? -eq 2
grep -q "as base64: error at offset 0: .*--inform" "$work/err" || fail "hint: $(cat "$work/err")"

if [ "$failures" -ne 0 ]; then echo "$failures of $checks checks failed"; exit 1; fi
echo "navigation, extraction and round trips agree on $certs of $seen certificates ($checks checks)"
