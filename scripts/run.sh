#!/usr/bin/env bash
# Sets up, builds and opens Vela Studio on the meadow. Without a display it runs on a virtual one
# and leaves screenshots of its main states.
#
# Usage: run.sh [PROJECT]              open PROJECT, examples/meadow by default
#        run.sh --screenshots DIR      leave screenshots in DIR, with or without a display
set -euo pipefail
cd "$(dirname "$0")/.."

fail() {
  echo "run: $1" >&2
  exit 1
}

project=examples/meadow
screenshots=
case "${1:-}" in
  --screenshots)
    screenshots=${2:-}
    [ -n "$screenshots" ] || fail "--screenshots needs a folder"
    ;;
  -*) fail "unknown option '$1'" ;;
  ?*) project=$1 ;;
esac
if [ -z "$screenshots" ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  screenshots=screenshots
  echo "run: no display here; screenshots go to $screenshots/"
fi

scripts/setup.sh
cmake --preset release --log-level=WARNING >/dev/null || fail "the build could not be configured"
cmake --build --preset release --target vela-studio vela lanternx || fail "the build failed"

studio=build/release/bin/vela-studio
if [ -z "$screenshots" ]; then
  exec "$studio" "$project"
fi

# The tour saves and restores: it works on a copy, with settings of its own.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# tour SCALE SCREEN FOLDER
tour() {
  local folder=$3
  mkdir -p "$folder"
  cp -r "$project" "$scratch/$1"
  QT_SCALE_FACTOR=$1 VELA_SCREEN=$2 XDG_CONFIG_HOME=$scratch/$1-config \
    XDG_DATA_HOME=$scratch/$1-data scripts/with_display.sh \
    "$studio" --screenshots "$(realpath "$folder")" "$scratch/$1" ||
    fail "the tour of screenshots did not come to its end"
}

# The same on screens of high density.
tour 1 1440x900 "$screenshots"
tour 1.5 2160x1350 "$screenshots/scale-1.5"
tour 2 2880x1800 "$screenshots/scale-2"
ls "$screenshots"/*.png
