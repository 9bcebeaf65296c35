#!/usr/bin/env bash
# Checks for the Debian packages the build and the tests need; installs the missing
# ones when run as root, otherwise prints the apt-get line and fails.
set -euo pipefail
pkgs=(g++ cmake ninja-build make pkg-config libgtest-dev googletest openssl ca-certificates)
# The exported-symbol and ABI checks.
pkgs+=(binutils abigail-tools)
# The command-line tool alone uses these two (the library depends on nothing).
pkgs+=(libcli11-dev nlohmann-json3-dev)
# The Debian packages: building (dpkg-shlibdeps, dpkg-gensymbols), checking, and
# the test that installs them.
pkgs+=(dpkg-dev fakeroot file lintian)
# Its tests render the manual page and make BER with xxd.
pkgs+=(man-db groff-base xxd)
# The driver of the browser that opens view's pages (chromium itself is installed
# by that test's setup, and its absence only skips the test).
pkgs+=(python3)
pkgs+=("$@")
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
if [ "$(id -u)" -eq 0 ]; then
  echo "installing: ${missing[*]}" >&2
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq && apt-get install -y -qq "${missing[@]}" >/dev/null
else
  echo "missing packages; run as root:" >&2
  echo "  apt-get update && apt-get install -y ${missing[*]}" >&2
  exit 1
fi
