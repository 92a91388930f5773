#!/usr/bin/env bash
# Sets up, builds and runs every test. Usage: test.sh [PRESET], with "dev" as default; the presets
# "asan" and "tsan" run the same tests under the sanitizers. The fuzz targets run with "dev".
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-dev}

fail() {
  echo "test: $1" >&2
  exit 1
}

build() {
  cmake --preset "$1" --log-level=WARNING >/dev/null || fail "the preset '$1' could not be configured"
  cmake --build --preset "$1" || fail "the preset '$1' could not be built"
}

scripts/setup.sh

build "$preset"
if [ "$preset" = dev ]; then
  build fuzz
fi

failed=0
if [ "$preset" = dev ]; then
  ctest --preset fuzz --parallel 2 || failed=1
fi
ctest --preset "$preset" --parallel 2 || failed=1
[ "$failed" -eq 0 ] || fail "some tests failed; the lists above name them"
