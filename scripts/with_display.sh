#!/usr/bin/env bash
# Runs a command on an X display of its own, with a software renderer and a fixed screen.
set -euo pipefail

command -v xvfb-run >/dev/null || {
  echo "with_display: xvfb-run is not installed; run scripts/setup.sh" >&2
  exit 1
}
export QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1
exec xvfb-run --auto-servernum --server-args="-screen 0 1440x900x24" "$@"
