#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds a consumer against it
# twice: with pkg-config and with find_package(keyasn).
set -euo pipefail
build=$1 consumer=$2 work=$3
rm -rf "$work"; mkdir -p "$work"
prefix=$work/prefix
# The libdir of this tree: lib/x86_64-linux-gnu when configured for /usr (the
# default preset), lib otherwise; the installed files must work under any prefix.
lib=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:[A-Z]*=//p' "$build/CMakeCache.txt")
cmake --install "$build" --prefix "$prefix" --strip >/dev/null
for f in include/keyasn/keyasn.h include/keyasn/support/ident_obj.h $lib/libkeyasn.so \
         $lib/libkeyasn.so.1 $lib/pkgconfig/keyasn.pc $lib/cmake/keyasn/keyasnConfig.cmake \
         $lib/cmake/keyasn/keyasnConfigVersion.cmake; do
  [ -e "$prefix/$f" ] || { echo "not installed: $f"; exit 1; }
done
if find "$prefix/include" -name '*_test*' -o -name 'test_*' | grep -q .; then echo "test helpers installed"; exit 1; fi
# Every installed header compiles on its own (it includes what it needs), and only
# public headers are installed (internal ones are not reachable from keyasn.h).
for h in $(cd "$prefix/include" && find keyasn -name '*.h'); do
  grep -q -F "\"$h\"" "$prefix/include/keyasn/keyasn.h" || [ "$h" = keyasn/keyasn.h ] \
    || { echo "internal header installed: $h"; exit 1; }
  echo "#include <$h>" | c++ -std=c++17 -fsyntax-only -I"$prefix/include" -x c++ - \
    || { echo "header does not stand alone: $h"; exit 1; }
done
# The tool, when built, is installed to bin/ and finds the library without help.
if [ -x "$build/tools/keyasn" ]; then
  [ -x "$prefix/bin/keyasn" ] || { echo "not installed: bin/keyasn"; exit 1; }
  "$prefix/bin/keyasn" --version | grep -q '^keyasn ' || { echo "bin/keyasn --version fails"; exit 1; }
  "$prefix/bin/keyasn" show > /dev/null || { echo "bin/keyasn show fails"; exit 1; }
fi
# 1. pkg-config
flags=$(PKG_CONFIG_PATH=$prefix/$lib/pkgconfig pkg-config --cflags --libs keyasn)
c++ -std=c++17 "$consumer/main.cc" -o "$work/consumer_pc" $flags
LD_LIBRARY_PATH=$prefix/$lib "$work/consumer_pc"
# 2. find_package
cmake -S "$consumer" -B "$work/cmake_build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake_build" >/dev/null
LD_LIBRARY_PATH=$prefix/$lib "$work/cmake_build/consumer"
# Stripped by --strip: no debug information left in the installed library.
if readelf -S "$prefix/$lib/libkeyasn.so.1" | grep -q -E '\.debug_'; then
  echo "installed library carries debug information"; exit 1
fi
# The CMake target names its include directory once.
incs=$(sed -n 's/.*INTERFACE_INCLUDE_DIRECTORIES "\(.*\)"/\1/p' "$prefix/$lib/cmake/keyasn/keyasnTargets.cmake")
[ "$incs" = '${_IMPORT_PREFIX}/include' ] || { echo "include directories of the target: $incs"; exit 1; }
echo "consumer ok under $lib (pkg-config and find_package)"
