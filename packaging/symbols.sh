#!/usr/bin/env bash
# Checks the exported symbols of a built libkeyasn1 package against the list kept in
# packaging/libkeyasn1.symbols, with dpkg-gensymbols at check level 4: a symbol added
# or removed fails. With --update the list is written anew from the package (do it
# for a change of the interface made on purpose, and record it in CHANGELOG.md).
# Usage: packaging/symbols.sh [--update] LIBKEYASN1.deb
set -euo pipefail
update=0
if [ "${1:-}" = --update ]; then update=1; shift; fi
deb=$1
list=$(cd "$(dirname "$0")" && pwd)/libkeyasn1.symbols
version=$(dpkg-deb -f "$deb" Version)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg-deb -x "$deb" "$work/root"
lib=$(find "$work/root" -name 'libkeyasn.so.1.*' -type f)
# dpkg-gensymbols reads the package's name and architecture from a control file.
mkdir -p "$work/debian"
printf 'Source: keyasn\n\nPackage: libkeyasn1\nArchitecture: any\n' > "$work/debian/control"
cd "$work"
if [ $update -eq 1 ]; then
  dpkg-gensymbols -q -plibkeyasn1 -v"$version" -e"$lib" -O"$list"
  echo "wrote $list"
  exit 0
fi
if dpkg-gensymbols -plibkeyasn1 -v"$version" -e"$lib" -I"$list" -O"$work/symbols" -c4; then
  echo "symbols ok: $(grep -c '^ ' "$list") symbols of libkeyasn.so.1 as listed"
else
  echo "The library's symbols differ from packaging/libkeyasn1.symbols (diff above)."
  echo "For a change made on purpose: packaging/symbols.sh --update $deb"
  exit 1
fi
