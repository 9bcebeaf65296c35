#!/usr/bin/env bash
# The shared library carries its SONAME and exports exactly the symbols of the
# checked-in list: none missing, and nothing else but the virtual tables, type
# information and thunks of listed classes and the names in namespace keyasn; and
# its calls to its own exported functions do not go through the PLT.
# Usage: exports_test.sh LIBRARY SYMBOL-LIST
set -euo pipefail
lib=$1
list=$2
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libkeyasn.so.1" ] || { echo "SONAME is '$soname'"; exit 1; }

# nm's spelling of the standard types, shortened to the list's.
normalize() {
  sed -E -e 's/@@?KEYASN_1$//' \
    -e 's/\[abi:cxx11\]//g' \
    -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
    -e 's/std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >/std::wstring/g' \
    -e 's/std::__cxx11::list<([A-Za-z ]+), std::allocator<[A-Za-z ]+> >/std::list<\1>/g'
}

exported=$(nm -D --defined-only -C "$lib" | cut -d' ' -f3- | normalize | grep -v -x 'KEYASN_1' | sort -u)
wanted=$(grep -v -e '^#' -e '^$' "$list" | sort -u)
classes=$(printf '%s\n' "$wanted" | sed -n -E 's/^([A-Za-z_][A-Za-z0-9_]*)::.*/\1/p' | sort -u | paste -sd'|')

missing=$(comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$exported"))
extra=$(comm -13 <(printf '%s\n' "$wanted") <(printf '%s\n' "$exported") |
  grep -v -E "^((vtable|typeinfo|typeinfo name) for ($classes)$|(non-virtual |virtual )?thunk to ($classes)::|keyasn::)" || true)

status=0
if [ -n "$missing" ]; then
  echo "missing exports ($(printf '%s\n' "$missing" | wc -l)):"; printf '%s\n' "$missing" | sed 's/^/  /'; status=1
fi
if [ -n "$extra" ]; then
  echo "exports not on the list ($(printf '%s\n' "$extra" | wc -l)):"; printf '%s\n' "$extra" | sed 's/^/  /'; status=1
fi
# The library's calls to its own functions are bound inside it: no PLT slot names a
# symbol the library defines.
defined=$(nm -D --defined-only "$lib" | awk '{print $3}' | sed -E 's/@@?KEYASN_1$//' | sort -u)
slots=$(readelf -rW "$lib" | awk '$3 == "R_X86_64_JUMP_SLOT" {print $5}' | sed -E 's/@.*$//' | sort -u)
own=$(comm -12 <(printf '%s\n' "$defined") <(printf '%s\n' "$slots") | c++filt)
if [ -n "$own" ]; then
  echo "calls through the PLT to the library's own functions ($(printf '%s\n' "$own" | wc -l)):"
  printf '%s\n' "$own" | head -20 | sed 's/^/  /'; status=1
fi
[ $status -eq 0 ] && echo "exports ok: $(printf '%s\n' "$wanted" | wc -l) listed symbols, $(printf '%s\n' "$exported" | wc -l) exported"
exit $status
