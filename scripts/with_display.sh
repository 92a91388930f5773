#!/usr/bin/env bash
# Runs a command on an X display of its own, with a software renderer and a fixed screen, whose size
# VELA_SCREEN may say.
set -euo pipefail

command -v xvfb-run >/dev/null || {
  echo "with_display: xvfb-run is not installed; run scripts/setup.sh" >&2
  exit 1
}
export QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1
exec xvfb-run --auto-servernum --server-args="-screen 0 ${VELA_SCREEN:-1440x900}x24" "$@"
