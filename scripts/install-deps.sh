#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the program need, and any
# further packages named on the command line (as `make coverage` names gcovr).
# Does nothing when everything is present; uses sudo when not run as root.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev
  libgtest-dev libgmock-dev libbenchmark-dev libmuparser-dev
  libeigen3-dev libboost-math-dev
  fonts-liberation fonts-dejavu-core
  xvfb xauth locales
  desktop-file-utils appstream
)
packages+=("$@")

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "Need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
