#!/usr/bin/env bash
# Installs the build into empty folders, once by --prefix and once by DESTDIR, and checks
# the layout a desktop expects; then the launcher and the metainfo against the
# freedesktop validators (skipped, exit 77, only where those tools are absent).
# Usage: check-install.sh BUILD-DIR APP-ID VERSION
set -euo pipefail
build=$1 id=$2 version=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
DESTDIR="$work/stage" cmake --install "$build" --prefix /usr >/dev/null

files=(
  bin/orvane bin/orvane-batch
  share/orvane/help/orvane.hlp share/orvane/help/flatrix.hlp share/orvane/help/deptrix.hlp
  "share/applications/$id.desktop" "share/metainfo/$id.metainfo.xml"
  "share/icons/hicolor/scalable/apps/$id.svg"
  share/man/man1/orvane.1 share/man/man1/orvane-batch.1
  share/doc/orvane/samples/README.md
)
status=0
for root in "$work/prefix" "$work/stage/usr"; do
  for f in "${files[@]}"; do
    [[ -s "$root/$f" ]] || { echo "missing: $root/$f"; status=1; }
  done
  for f in bin/orvane bin/orvane-batch; do
    [[ -x "$root/$f" ]] || { echo "not executable: $root/$f"; status=1; }
  done
done
[[ $status -eq 0 ]] || exit 1

# Both answer on a terminal without a display.
check_output() {
  local expected=$1; shift
  local got
  got=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$@" 2>&1) || true
  [[ "$got" == "$expected" ]] || { echo "$* printed \"$got\", expected \"$expected\""; status=1; }
}
check_output "Orvane Regression $version" "$work/prefix/bin/orvane" --version
check_output "orvane-batch $version" "$work/prefix/bin/orvane-batch" --version
[[ $status -eq 0 ]] || exit 1

missing=()
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$work/prefix/share/applications/$id.desktop" || exit 1
else
  missing+=(desktop-file-validate)
fi
if command -v appstreamcli >/dev/null; then
  # The whole tree: the metainfo, and the launcher and icon it names.
  appstreamcli validate-tree --no-net "$work/prefix" || exit 1
else
  missing+=(appstreamcli)
fi
if [[ ${#missing[@]} -gt 0 ]]; then
  echo "Layout checked; not validated, tools absent: ${missing[*]} (scripts/install-deps.sh installs them)"
  exit 77
fi
echo "Installed layout complete and valid."
