#!/usr/bin/env bash
# Starts the program in the folder the user is in; it finds its help documents in the
# source tree it was built from.
set -euo pipefail
exe=$(realpath "$1")
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" ]]; then
  echo "No display found: starting the program on a virtual display (xvfb-run)."
  echo "To do the same by hand:  xvfb-run -a -s '-screen 0 1280x1024x24' $exe"
  exec xvfb-run -a -s '-screen 0 1280x1024x24' "$exe"
fi
exec "$exe"
