#!/usr/bin/env bash
# The tool's behaviour at its edges: help and version, exit statuses, messages
# naming the file and the fault, standard input, the input forms, and malformed
# input of every kind (exit 2, the tree up to the damage, never a crash).
# Usage: cli_test.sh KEYASN SOURCE_DIR [CA_BUNDLE]  (with CA_BUNDLE: the peak
# memory of dump --json and lint on 64 MiB of its certificates, on builds
# without sanitizers)
set -uo pipefail
keyasn=$1
cd "$2"
# Without FILE the tool reads standard input when it is a pipe or a file: the
# checks below give it none unless they say so.
exec < /dev/null
export KEYASN_OIDS=none  # names from the built-in table only
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
checks=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# run STATUS COMMAND...: runs the tool, expects the exit status; output in
# $work/out and $work/err.
run() {
  local want=$1; shift
  checks=$((checks + 1))
  local status=0
  "$keyasn" "$@" > "$work/out" 2> "$work/err" || status=$?
  if [ "$status" -ge 128 ]; then fail "keyasn $* died with signal $((status - 128))"; return 1; fi
  if [ "$status" -ne "$want" ]; then
    fail "keyasn $* exited with $status, not $want; stderr: $(head -3 "$work/err")"
    return 1
  fi
  return 0
}
out_has() { grep -q -F -- "$1" "$work/out" || fail "stdout lacks '$1': $(head -5 "$work/out")"; }
err_has() { grep -q -F -- "$1" "$work/err" || fail "stderr lacks '$1': $(head -5 "$work/err")"; }
err_is() { [ "$(cat "$work/err")" = "$1" ] || fail "stderr is '$(cat "$work/err")', not '$1'"; }
out_empty() { [ ! -s "$work/out" ] || fail "stdout not empty: $(head -3 "$work/out")"; }

sample=samples/container.der

# Help and version.
run 0 --version && out_has "keyasn 1.0.0"
run 0 --help && { out_has "dump"; out_has "show"; out_has "encode"; out_has "lint"; out_has "Exit status"; }
run 0 dump --help && { out_has "--no-encap"; out_has "--full"; out_has "--inform"; out_has "--json"; }
run 0 show --help && { out_has "--as"; out_has "container"; }
run 0 encode --help && { out_has "--outform"; out_has "-o,--output"; }

# Usage errors: exit 1.
run 1
run 1 frobnicate
run 1 dump --bogus
run 1 dump --inform xml "$sample" && err_has "xml"
run 1 show "$sample" && err_has "--as TYPE is required with a FILE"
run 1 show --as nosuch "$sample" && err_has 'unknown TYPE "nosuch"'
run 1 encode --as nosuch && err_has 'keyasn: encode: unknown TYPE "nosuch"'
run 1 encode --as container --outform ber && err_has "ber"
run 1 dump a b

# I/O errors: exit 3, the file named.
run 3 dump /nonexistent/x.der && err_is "keyasn: /nonexistent/x.der: cannot open: No such file or directory"
run 3 show --as container /nonexistent/x.der && err_has "keyasn: /nonexistent/x.der: cannot open"
run 3 dump "$work" && err_has "keyasn: $work: cannot read"
"$keyasn" show --json > "$work/c.json"
run 3 encode --as container "$work/c.json" -o /nonexistent/dir/out.der && \
  err_has "keyasn: /nonexistent/dir/out.der: cannot open for writing"
run 3 encode --as container /nonexistent/in.json && err_has "keyasn: /nonexistent/in.json: cannot open"

# Standard input, and every input form of the same octets.
run 0 dump - < "$sample" && cp "$work/out" "$work/der.dump"
run 0 dump "$sample" && cmp -s "$work/out" "$work/der.dump" || fail "dump of a file and of stdin differ"
{ echo "-----BEGIN KEY CONTAINER-----"; base64 -w 64 "$sample"; echo "-----END KEY CONTAINER-----"; } > "$work/c.pem"
base64 -w 76 "$sample" > "$work/c.b64"
od -An -v -tx1 "$sample" > "$work/c.hex"
for form in pem b64 hex; do
  run 0 dump "$work/c.$form" && { cmp -s "$work/out" "$work/der.dump" || fail "dump of the $form form differs"; }
done
run 0 dump --inform pem "$work/c.pem" && cmp -s "$work/out" "$work/der.dump" || fail "--inform pem"
run 0 dump --inform base64 - < "$work/c.b64" && cmp -s "$work/out" "$work/der.dump" || fail "--inform base64"
run 0 dump --inform hex "$work/c.hex" && cmp -s "$work/out" "$work/der.dump" || fail "--inform hex"
run 0 dump --inform der "$sample" && cmp -s "$work/out" "$work/der.dump" || fail "--inform der"
run 0 show --as container - < "$work/c.pem" && out_has "# ASNContainerInfo (container) from <stdin>"
run 2 dump --inform hex "$sample" && err_has "keyasn: $sample: not hex text"
run 2 dump --inform pem "$sample" && err_has "keyasn: $sample: not PEM: no PEM block"
run 2 dump --inform base64 "$work/c.pem" && err_has "not base64 text"
: > "$work/empty"
run 2 dump "$work/empty" && err_is "keyasn: $work/empty: empty input"
run 2 dump - < /dev/null && err_is "keyasn: <stdin>: empty input"

# --no-encap and --full.
printf '\x04\x05\x30\x03\x02\x01\x05' > "$work/encap.der"
run 0 dump "$work/encap.der" && { out_has "OCTET STRING encapsulates"; out_has "INTEGER 5"; }
run 0 dump --no-encap "$work/encap.der" && { out_has "OCTET STRING 3003020105"; grep -q INTEGER "$work/out" && fail "--no-encap opened the contents"; }
run 0 dump "$sample" && out_has "... (20 octets)"
run 0 dump --full "$sample" && { grep -q -F "octets)" "$work/out" && fail "--full still shortens"; out_has "202122232425262728292A2B2C2D2E2F30313233"; }

# Malformed input: exit 2, the tree up to the bad element on stdout, the offset
# and the fault on stderr.
printf '\x30\x06\x02\x01\x05\x04\x05\x41' > "$work/bad-length.der"
run 2 dump "$work/bad-length.der" && {
  out_has "INTEGER 5"
  err_is "keyasn: $work/bad-length.der: as der: error at offset 5: 206 the data is malformed or truncated: length 5 runs past the end of the enclosing element (1 octet left)"
}
run 2 dump --json "$work/bad-length.der" && { out_has '"offset": 2'; err_has "error at offset 5: 206"; }
head -c 100 "$sample" > "$work/truncated.der"
run 2 dump "$work/truncated.der" && {
  out_has "    93  2     10 cons     [3]"
  err_has "error at offset 0: 206 the data is malformed or truncated: length 408 runs past the end of the data (96 octets left)"
}
run 2 show --as container "$work/truncated.der" && { out_empty; err_has "keyasn: $work/truncated.der: as der: error at offset 0: 206"; }
printf '\x30\x03\x02\x01\x05\x05' > "$work/trailing.der"
run 2 dump "$work/trailing.der" && err_has "error at offset 5: 206 the data is malformed or truncated: header truncated (1 octet left)"
printf '\x30\x03\x02\x01\x05\x05\x00' > "$work/two.der"
run 0 dump "$work/two.der" && out_has "NULL"
run 2 show --as container "$work/two.der" && err_has "error at offset 5: data after the ASNContainerInfo element"
printf '\x1f\x81\x81' > "$work/tag.der"
run 2 dump "$work/tag.der" && err_has "error at offset 0: 205 the identifier octets are malformed"
# Deep nesting, definite and indefinite.
awk 'BEGIN { for (i = 0; i < 5000; i++) printf "3080"; for (i = 0; i < 5000; i++) printf "0000" }' > "$work/deep.hex"
run 2 dump "$work/deep.hex" && { err_has "error at offset 200: 206 the data is malformed or truncated: nesting deeper than 100 levels"; }
run 2 show --as container "$work/deep.hex" && err_has "nesting deeper than 100 levels"
# Every prefix of the sample: the dump and the container reader refuse it
# cleanly, never crash.
size=$(stat -c %s "$sample")
for ((n = 1; n < size; n += 7)); do
  head -c "$n" "$sample" > "$work/prefix.der"
  run 2 dump --inform der "$work/prefix.der" || true
  run 2 show --inform der --as container "$work/prefix.der" || true
done
# A structure of the wrong TYPE.
run 2 show --as keyinfo samples/validity.der && err_has "keyasn: samples/validity.der: as der: cannot read the key description: ASNKeyInfo::ReadData"
run 2 show --as algid samples/validity.der && err_has "cannot read the algorithm identifier: CASNTIdData::ReadData: code 206 (the data is malformed or truncated)"

# Forms the library reads but writes otherwise: members it holds encoded are
# kept as they stand, so the round trip still gives the octets back; a structure
# it rebuilds says so.
echo "30 22 80 0F 32303234303130313030303030305A 81 0F 32303439313233313233353935395A" > "$work/tagged.hex"
run 0 show --as validity "$work/tagged.hex" && {
  out_has "From: 2024-01-01T00:00:00Z"; out_has "To: 2049-12-31T23:59:59Z"; out_has "Encoded: "; [ ! -s "$work/err" ] || fail "note for a kept encoding"
}
run 0 show --as validity --json "$work/tagged.hex" && cp "$work/out" "$work/tagged.json"
run 0 encode --as validity --outform hex "$work/tagged.json" && out_has "3022800F"
echo "30 10 02 01 03 30 0B 02 01 00 02 01 00 A1 03 02 01 05" > "$work/legacy.hex"
run 0 show --as container "$work/legacy.hex" && { out_has "Octets1: 05000000000000000000000000000000 (16 octets)"; out_has "Encoded: 300B"; }
run 0 show --as container --json "$work/legacy.hex" && cp "$work/out" "$work/legacy.json"
run 0 encode --as container --outform hex "$work/legacy.json" && out_has "30100201033"
echo "30 0B 02 01 00 02 01 00 A1 03 02 01 05" > "$work/legacy-key.hex"
run 0 show --as keyinfo "$work/legacy-key.hex" && \
  err_is "keyasn: $work/legacy-key.hex: note: encode --as keyinfo of this JSON gives other octets: the input is not in the form the library writes"

# Malformed JSON for encode: exit 2, the member named.
echo '{"Version": 3,' > "$work/broken.json"
run 2 encode --as container "$work/broken.json" && err_has "keyasn: $work/broken.json: not JSON: "
echo '[{"tag": 1e400}]' > "$work/huge.json"
run 2 encode "$work/huge.json" && err_has "keyasn: $work/huge.json: not JSON: " && err_has "number overflow"
echo '{"Version": -1, "KeyInfo": null, "DefenceKeyInfo": null, "Optional0": null, "Optional1": null}' > "$work/neg.json"
run 2 encode --as container "$work/neg.json" && err_has 'member "Version": expected a whole number from 0 to 4294967295'
echo '{"Version": 3, "KeyInfo": {"Flags": 1}, "DefenceKeyInfo": null, "Optional0": null, "Optional1": null}' > "$work/partial.json"
run 2 encode --as container "$work/partial.json" && err_has 'member "KeyInfo.Number": missing'
echo '{"ObjID": "1.2.x", "AddInfo": null}' > "$work/oid.json"
run 2 encode --as algid "$work/oid.json" && err_has 'member "ObjID": expected a dotted object identifier'
echo '{"From": "yesterday", "To": null}' > "$work/time.json"
run 2 encode --as validity "$work/time.json" && err_has 'member "From": expected a time'
echo '[]' > "$work/array.json"
run 2 encode --as container "$work/array.json" && err_has "the document: expected an object"

# The binary parameter form: too short, or values it cannot carry.
head -c 69 samples/encr_params_binary.bin > "$work/short.bin"
run 2 show --as encr-params-binary "$work/short.bin" && \
  err_has "cannot read the binary encryption parameters: CASNEncrParams::GetFromDsdr: code 134"
"$keyasn" show --as encr-params-binary --json samples/encr_params_binary.bin | sed 's/"mode": 1/"mode": 0/' > "$work/mode.json"
run 2 encode --as encr-params-binary "$work/mode.json" && \
  err_has 'member "mode": the binary form cannot carry this value (the library reads 1)'
{ cat samples/encr_params_binary.bin; printf 'XY'; } > "$work/long.bin"
run 0 show --as encr-params-binary "$work/long.bin" && out_has "Trailing: 5859 (2 octets)"
run 0 show --as encr-params-binary --json "$work/long.bin" && cp "$work/out" "$work/long.json"
run 0 encode --as encr-params-binary "$work/long.json" && cmp -s "$work/out" "$work/long.bin" || fail "trailing octets round trip"

# encode writes DER by default, PEM and hex on request, to a file with -o.
run 0 encode --as container "$work/c.json" -o "$work/out.der" && { out_empty; cmp -s "$work/out.der" "$sample" || fail "encode -o"; }
run 0 encode --as container --outform pem "$work/c.json" && { out_has "-----BEGIN KEYASN CONTAINER-----"; out_has "-----END KEYASN CONTAINER-----"; }
run 0 encode --as container --outform hex "$work/c.json" && { [ "$(cat "$work/out")" = "$(od -An -v -tx1 "$sample" | tr -d ' \n' | tr a-f A-F)" ] || fail "hex output"; }

# lint: 0 without an error finding, 4 with one, 2 malformed (the findings before
# the damage first), 1 usage, 3 I/O; the same input forms as dump.
run 0 lint --help && { out_has "--json"; out_has "--inform"; out_has "FILE"; }
run 1 lint --bogus
run 1 lint a b
run 3 lint /nonexistent/x.der && err_is "keyasn: /nonexistent/x.der: cannot open: No such file or directory"
run 0 lint "$sample" && out_has "DER: no findings"
run 0 lint && out_has "DER: no findings"
run 0 lint - < "$sample" && out_has "DER: no findings"
echo "3106 020102 020101" > "$work/set.hex"
run 4 lint "$work/set.hex" && {
  out_has "     5  error  set.order                   SET elements out of order"
  out_has "1 finding (1 error, 0 notes)"
}
run 4 lint --json --inform hex "$work/set.hex" && {
  out_has '"rule": "set.order"'; out_has '"severity": "error"'; out_has '"depth": 1'; out_has '"offset": 5'
}
run 0 dump "$work/set.hex" && out_has "INTEGER 1  ! set.order"
# The streaming dump marks each top-level element and the element --offset reaches
# on its own, keeps the marks under --depth, and encode ignores "findings".
echo "3106 020102 020101 3080 0101FF 0000 3106 020102 020101" > "$work/three.hex"
run 0 dump "$work/three.hex" && {
  [ "$(grep -c '! set.order' "$work/out")" -eq 2 ] || fail "dump marks: $(cat "$work/out")"
  out_has "SEQUENCE  ! length.indefinite"
}
run 0 dump --offset 15 "$work/three.hex" && out_has "    20  2      1 prim   INTEGER 1  ! set.order"
run 0 dump --depth 1 "$work/three.hex" && out_has "SEQUENCE  ! length.indefinite"
"$keyasn" dump --json "$work/three.hex" > "$work/three.json"
grep -q '"findings"' "$work/three.json" || fail "dump --json has no findings"
"$keyasn" encode < "$work/three.json" | xxd -p -u | tr -d '\n' > "$work/three.back"
[ "$(cat "$work/three.back")" = "$(tr -d ' ' < "$work/three.hex")" ] || fail "encode of marked JSON: $(cat "$work/three.back")"
run 0 lint "$work/trailing.der" && { out_has "note   data.trailing"; out_has "1 finding (0 errors, 1 note)"; }
echo "3007 010101 02050000" > "$work/damaged.hex"
run 2 lint "$work/damaged.hex" && {
  out_has "boolean.value"
  [ "$(wc -l < "$work/out")" -eq 1 ] || fail "lint of damaged input: $(cat "$work/out")"
  err_is "keyasn: $work/damaged.hex: as hex: error at offset 5: 206 the data is malformed or truncated: length 5 runs past the end of the enclosing element (2 octets left) (the text was taken for hex; name its form with --inform der|pem|base64|hex)"
}
run 2 lint "$work/deep.hex" && err_has "nesting deeper than 100 levels"
run 2 lint - < /dev/null && err_is "keyasn: <stdin>: empty input"

# Memory follows the largest top-level element, not the input: 64 MiB of
# certificates through dump --json and lint stay far below the input's size.
bundle=${3:-}
if [ -n "$bundle" ] && [ -x /usr/bin/time ]; then
  awk -v dir="$work" '/-----BEGIN CERTIFICATE-----/ { n++; on = 1; next }
                      /-----END CERTIFICATE-----/ { on = 0 }
                      on { print > (dir "/cert" n ".b64") }' "$bundle"
  for b64 in "$work"/cert*.b64; do base64 -d "$b64"; done > "$work/big.der"
  rm -f "$work"/cert*.b64
  while [ "$(stat -c %s "$work/big.der")" -lt $((64 << 20)) ]; do
    cat "$work/big.der" "$work/big.der" > "$work/twice.der" && mv "$work/twice.der" "$work/big.der"
  done
  for command in "dump --json" lint; do
    checks=$((checks + 1))
    # shellcheck disable=SC2086  # the command's words
    /usr/bin/time -f "%M" -o "$work/peak" "$keyasn" $command "$work/big.der" > /dev/null 2> "$work/err" ||
      fail "keyasn $command of 64 MiB of certificates: $(head -3 "$work/err")"
    [ "$(cat "$work/peak")" -lt $((32 << 10)) ] ||
      fail "keyasn $command of 64 MiB of certificates peaked at $(cat "$work/peak") KiB"
  done
  rm -f "$work/big.der"
fi

# view: a page to a file or standard output; damaged input gives a page and exit
# 2; over 1 MiB only with --force; never a URL outside the data.
run 0 view --help && { out_has "--as"; out_has "--force"; out_has "-o,--output"; out_has "container"; }
run 0 view -o "$work/page.html" --as container "$sample" && {
  out_empty
  grep -q '^<!DOCTYPE html>' "$work/page.html" || fail "view -o: not a page"
  grep -q '"structure":"container (ASNContainerInfo)"' "$work/page.html" || fail "view --as: no structure"
}
run 0 view && { out_has '"name":"\u003cbundled sample\u003e"'; out_has '"structure":"container'; }
run 0 view - < "$sample" && out_has '"name":"\u003cstdin\u003e"'
run 1 view --as nosuch "$sample" && err_is 'keyasn: view: unknown TYPE "nosuch" (see keyasn show --help)'
run 2 view "$work/damaged.hex" && {
  out_has '"error":{"offset":5,"text":"error at offset 5: 206'
  err_has "keyasn: $work/damaged.hex: as hex: error at offset 5: 206"
}
run 2 view --as container "$work/damaged.hex" && out_has '"member_error":"cannot read it as container'
# 1 MiB of zeros: the most elements an input of that size can hold.
head -c 1048576 /dev/zero > "$work/mib.der"
run 0 view -o "$work/mib.html" "$work/mib.der" && [ -s "$work/mib.html" ] || fail "view of 1 MiB: no page"
head -c 1048577 /dev/zero > "$work/big.der"
run 1 view -o "$work/big.html" "$work/big.der" && {
  err_is "keyasn: $work/big.der: 1048577 octets, more than the 1048576 a page is made of without --force (a larger page opens slowly)"
  [ ! -e "$work/big.html" ] || fail "view refused the input but wrote a page"
}
run 2 view --force -o "$work/big.html" "$work/big.der" && [ -s "$work/big.html" ] || fail "view --force: no page"
run 3 view -o /nonexistent/page.html "$sample" && err_has "keyasn: /nonexistent/page.html: cannot open for writing"

if [ "$failures" -ne 0 ]; then echo "$failures of $checks checks failed"; exit 1; fi
echo "$checks behaviour checks passed"
