#!/usr/bin/env bash
# Installs the build tree BUILD into a scratch folder, builds the toy host and the toy extension
# against it, with CMake and with pkg-config, and runs the host.
# Usage: check_package.sh BUILD COMPILER [SANITIZERS]
set -euo pipefail

build=$1
compiler=$2
sanitizers=${3:-}
here=$(cd "$(dirname "$0")" && pwd)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
flags=
[ -z "$sanitizers" ] || flags="-fsanitize=$sanitizers"

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cp -r "$here/toy" "$scratch/toy"

cmake -S "$scratch/toy" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$scratch/prefix" -DCMAKE_CXX_FLAGS="$flags -Wall -Wextra -Werror" >/dev/null
cmake --build "$scratch/build" >/dev/null

check() {
  local answer
  answer=$("$1" "$scratch/build/extensions")
  if [ "$answer" != "toy host of library $2: toy engine found" ]; then
    echo "check_package: the toy host of $3 answered '$answer'" >&2
    exit 1
  fi
}

PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name velacore.pc)")
export PKG_CONFIG_PATH
version=$(pkg-config --modversion velacore)
check "$scratch/build/toyhost" "$version" "CMake"

# shellcheck disable=SC2046,SC2086 # the flags are lists
"$compiler" -std=c++17 -fPIC $flags "$scratch/toy/toyhost.cpp" -o "$scratch/toyhost" \
  $(pkg-config --cflags --libs velacore Qt5Widgets) \
  -Wl,-rpath,"$(pkg-config --variable=libdir velacore)"
check "$scratch/toyhost" "$version" "pkg-config"

# What was installed runs where it lies.
"$scratch/prefix/bin/vela" --version | grep -qF "$version"
"$scratch/prefix/bin/vela" check "$here/../../examples/meadow"
