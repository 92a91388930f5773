#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Renders the SVG drawings of the library and of Studio to the PNG files that the resources hold:
# NAME.svg becomes NAME.png in its own size and NAME@2x.png in double size.
# Only what is missing or older than its drawing is rendered; --all renders everything.
set -euo pipefail

fail() {
  echo "render_icons: $*" >&2
  exit 1
}

all=false
case "${1:-}" in
  "") ;;
  --all) all=true ;;
  *) fail "unknown argument \"$1\" (usage: render_icons.sh [--all])" ;;
esac
command -v rsvg-convert >/dev/null ||
  fail "rsvg-convert is missing; install the package librsvg2-bin"
cd "$(dirname "$0")/.."

rendered=0
unfinished=
trap '[ -z "$unfinished" ] || rm -f "$unfinished"' EXIT

# render SVG PNG OPTION...: the picture replaces the old one only when it is whole.
render() {
  local svg=$1 png=$2 message
  shift 2
  [ -r "$svg" ] || fail "$svg is missing or cannot be read"
  if ! $all && [ -e "$png" ] && [ ! "$svg" -nt "$png" ]; then
    return
  fi
  unfinished=$png.part
  message=$(rsvg-convert "$@" --output "$unfinished" "$svg" 2>&1) ||
    fail "$svg cannot be rendered: ${message//$'\n'/ }"
  mv "$unfinished" "$png" || fail "$png cannot be written"
  unfinished=
  rendered=$((rendered + 1))
}

for folder in src/resources/icons studio/resources/icons; do
  for svg in "$folder"/svg/*.svg; do
    name=$(basename "$svg" .svg)
    render "$svg" "$folder/$name.png"
    case "$name" in
      # Stage pictures are measured in stage pixels, so there is one of each.
      1080p | 720p | 480p | 240p) ;;
      *) render "$svg" "$folder/$name@2x.png" --zoom 2 ;;
    esac
  done
done

# The application icon in the sizes of desktops, from the drawing with more detail.
for size in 48 128 256; do
  render studio/resources/org.vela.Studio.svg "studio/resources/icons/vela-$size.png" \
    --width "$size" --height "$size"
done

echo "render_icons: $rendered pictures rendered"
