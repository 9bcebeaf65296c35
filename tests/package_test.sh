#!/usr/bin/env bash
# The Debian packages made from this build tree install, work and remove cleanly:
# libkeyasn1, libkeyasn-dev and keyasn-tools are installed with dpkg -i, a consumer
# is built against /usr with pkg-config and with find_package(keyasn 1) and run,
# the tool is run, then the packages are purged and every file they installed
# must be gone. Needs root (skipped otherwise, exit 77) and the dpkg tools.
# Usage: package_test.sh BUILD_DIR CONSUMER_DIR WORK_DIR
set -euo pipefail
build=$1 consumer=$2 work=$3
packages=(keyasn-tools libkeyasn-dev libkeyasn1)
if [ "$(id -u)" -ne 0 ]; then
  echo "SKIPPED: installing the packages needs root (dpkg -i)"; exit 77
fi
for tool in dpkg-deb dpkg-shlibdeps fakeroot pkg-config; do
  command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/deps.sh installs them"; exit 1; }
done
# One package test at a time on this machine, whatever tree it runs from.
exec 9>/tmp/keyasn-package-test.lock
flock 9
for p in "${packages[@]}"; do
  if dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'installed'; then
    echo "SKIPPED: $p is already installed on this machine; the test would remove it"; exit 77
  fi
done
rm -rf "$work"; mkdir -p "$work"
cpack --config "$build/CPackConfig.cmake" -B "$work/debs" >"$work/cpack.log" 2>&1 \
  || { cat "$work/cpack.log"; exit 1; }
debs=("$work"/debs/*.deb)
[ ${#debs[@]} -eq 3 ] || { echo "expected three packages, got: ${debs[*]}"; exit 1; }

# The library's symbols are the listed ones (packaging/libkeyasn1.symbols).
bash "$(dirname "$0")/../packaging/symbols.sh" "$work"/debs/libkeyasn1_*.deb

cleanup() { dpkg --purge "${packages[@]}" >/dev/null 2>&1 || true; }
trap cleanup EXIT
dpkg -i "${debs[@]}" >"$work/dpkg-install.log" || { cat "$work/dpkg-install.log"; exit 1; }
for p in "${packages[@]}"; do dpkg -L "$p"; done | sort -u > "$work/files"

# The library is stripped, and found without any search path.
lib=$(readlink -f /usr/lib/*/libkeyasn.so.1)
if readelf -S "$lib" | grep -q -E '\.debug_|\.symtab'; then echo "installed library not stripped"; exit 1; fi

# 1. pkg-config, 2. find_package, both against /usr with no extra path.
c++ -std=c++17 "$consumer/main.cc" -o "$work/consumer_pc" $(pkg-config --cflags --libs keyasn)
"$work/consumer_pc"
cmake -S "$consumer" -B "$work/cmake_build" >/dev/null
cmake --build "$work/cmake_build" >/dev/null
"$work/cmake_build/consumer"
keyasn --version | grep -q "^keyasn " || { echo "keyasn --version fails"; exit 1; }
keyasn show >/dev/null || { echo "keyasn show fails"; exit 1; }

trap - EXIT
dpkg -r "${packages[@]}" >/dev/null
dpkg --purge "${packages[@]}" >/dev/null
left=0
for p in "${packages[@]}"; do
  if dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q -v 'not-installed'; then
    echo "still known to dpkg: $p"; left=1
  fi
done
# Every file gone, and every directory that only these packages used.
while read -r f; do
  if [ -L "$f" ] || [ -f "$f" ]; then echo "left behind: $f"; left=1; fi
  case "$f" in
    */keyasn|*/libkeyasn1|*/libkeyasn-dev|*/keyasn-tools)
      if [ -d "$f" ]; then echo "left behind: $f/"; left=1; fi ;;
  esac
done < "$work/files"
[ $left -eq 0 ] || exit 1
echo "packages ok: $(basename -a "${debs[@]}" | paste -sd' ') installed, used and removed"
