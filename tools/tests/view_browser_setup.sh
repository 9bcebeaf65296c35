#!/usr/bin/env bash
# Installs Debian's chromium for the tests that open view's pages, when it is
# missing and this runs as root; otherwise says why those tests will be skipped.
set -uo pipefail
if command -v chromium > /dev/null || command -v chromium-browser > /dev/null; then
  echo "chromium is installed"
  exit 0
fi
if [ "$(id -u)" -ne 0 ] || ! command -v apt-get > /dev/null; then
  echo "chromium is missing and cannot be installed here (run as root: apt-get install chromium):"
  echo "the pages of view will not be opened in a browser"
  exit 0
fi
echo "installing chromium"
export DEBIAN_FRONTEND=noninteractive
if ! { timeout 900 apt-get update -qq && timeout 900 apt-get install -y -qq chromium > /dev/null; }; then
  echo "chromium could not be installed: the pages of view will not be opened in a browser"
fi
exit 0
