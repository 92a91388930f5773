#!/usr/bin/env bash
# Brings a Debian 12 machine to everything that building, running and testing Vela needs.
# Does nothing, quietly, where all is there.
set -euo pipefail

packages=(
  # Tools
  g++ clang cmake ninja-build ccache pkg-config git python3
  clang-format clang-tidy
  # Qt 5.15
  qtbase5-dev qtbase5-dev-tools qttools5-dev qttools5-dev-tools libqt5svg5-dev libgl-dev
  # Text, images, sounds, scripts, archives
  libuchardet-dev libgif-dev libsfml-dev libsamplerate0-dev libmpg123-dev libflac-dev
  libvorbis-dev libogg-dev liblua5.3-dev libquazip1-qt5-dev zlib1g-dev
  # Tests, benchmarks, screenshots
  libbenchmark-dev xvfb xauth libgl1-mesa-dri fonts-dejavu-core zip unzip librsvg2-bin
  # Other programs that the tests compare files with
  ffmpeg gifsicle imagemagick netpbm sox libsox-fmt-mp3 flac vorbis-tools lame
  # What benchmarks compare with
  libavcodec-dev libavfilter-dev libavutil-dev libimagequant-dev libsqlite3-dev libsndfile1-dev
)

fail() {
  echo "setup: $1" >&2
  exit 1
}

installed() {
  dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "installing packages needs root: run this script as root or install sudo"
  fi
}

# Runs a command, showing what it printed only if it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# sol2 is headers only and packaged for newer suites than the machine's own. It comes from the
# archive that the machine's own sources name, through package lists that nothing else reads.
install_sol2() {
  local site suite scratch
  quietly as_root apt-get update || fail "the package lists could not be updated"
  site=$(apt-get indextargets --format '$(CREATED_BY)|$(ORIGIN)|$(COMPONENT)|$(SITE)' 2>/dev/null |
    awk -F'|' '$1 == "Packages" && $2 == "Debian" && $3 == "main" && $4 !~ /security/ { print $4; exit }')
  [ -n "$site" ] || fail "no Debian archive among this machine's package sources to take sol2-dev from"
  scratch=$(mktemp -d)
  chmod 755 "$scratch"
  mkdir -p "$scratch/lists/partial" "$scratch/empty"
  for suite in forky sid; do
    echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $site $suite main" \
      >"$scratch/sources.list"
    local apt=(
      -o "Dir::Etc::SourceList=$scratch/sources.list"
      -o "Dir::Etc::SourceParts=$scratch/empty"
      -o "Dir::Etc::PreferencesParts=$scratch/empty"
      -o "Dir::State::Lists=$scratch/lists"
      -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache="
      -o "APT::Sandbox::User=root"
    )
    if quietly as_root apt-get "${apt[@]}" update &&
      (cd "$scratch" && quietly as_root apt-get "${apt[@]}" download sol2-dev); then
      break
    fi
  done
  set -- "$scratch"/sol2-dev_*.deb
  [ -f "$1" ] || fail "sol2-dev could not be downloaded from the suites forky or sid"
  quietly as_root dpkg --install "$1" || fail "sol2-dev could not be installed"
  rm -rf "$scratch"
}

command -v apt-get >/dev/null || fail "this script knows Debian and its relatives only (no apt-get here)"

missing=()
for package in "${packages[@]}"; do
  installed "$package" || missing+=("$package")
done
if [ "${#missing[@]}" -gt 0 ]; then
  echo "setup: installing ${#missing[@]} packages: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  quietly as_root apt-get update || fail "the package lists could not be updated"
  quietly as_root apt-get install -y --no-install-recommends "${missing[@]}" ||
    fail "these packages could not be installed: ${missing[*]}"
fi
if ! installed sol2-dev; then
  echo "setup: installing sol2-dev"
  install_sol2
fi
