#!/usr/bin/env bash
# Installs what the fuzz targets need beyond the main build: clang with its libFuzzer
# and sanitizer runtimes. Does nothing when present; uses sudo when not run as root.
set -euo pipefail

if command -v clang++ >/dev/null &&
   echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' |
     clang++ -x c++ -fsanitize=fuzzer,address,undefined -o /dev/null - 2>/dev/null; then
  exit 0
fi

echo "Installing: clang"
sudo=""
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "Need root or sudo to install: clang" >&2; exit 1; }
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends clang
