#!/usr/bin/env bash
# Starts the program in the help folder, where it finds its three help files.
set -euo pipefail
exe=$(realpath "$1")
cd "$(dirname "$0")/../help"
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" ]]; then
  echo "No display found: starting the program on a virtual display (xvfb-run)."
  echo "To do the same by hand:  cd help && xvfb-run -a -s '-screen 0 1280x1024x24' $exe"
  exec xvfb-run -a -s '-screen 0 1280x1024x24' "$exe"
fi
exec "$exe"
