# shellcheck shell=bash
# What ./run and ./test share. Sourced from the root of the checkout, with `set -euo pipefail` on.

say() { printf '%s\n' "$*"; }

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# packagesFor PURPOSE...: the names in packages.txt that stand for one of these.
packagesFor() {
  local purpose
  for purpose in "$@"; do
    awk -v purpose="$purpose" '!/^#/ && $2 == purpose { print $1 }' packaging/packages.txt
  done
}

isInstalled() { [[ $(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null) == ii* ]]; }

# installMissing PURPOSE...: installs what is missing, with apt; does nothing, and asks for nothing, if nothing is.
installMissing() {
  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    say "No apt here: going on, on trust that the equivalents of packaging/packages.txt are installed."
    return
  fi
  local package missing=() asRoot=()
  for package in $(packagesFor "$@"); do
    isInstalled "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  say "Installing: ${missing[*]}"
  if ((EUID != 0)); then
    command -v sudo >/dev/null || die "these packages are missing, and there is no sudo: ${missing[*]}"
    asRoot=(sudo)
  fi
  local apt=("${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)
  "${apt[@]}" update || die "apt-get update failed"
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null ||
    die "apt-get couldn't install: ${missing[*]}"
}

# build PRESET [TARGET...]: configures and builds on all cores.
build() {
  local preset=$1
  shift
  # A build folder beside another one, or another checkout, finds the same objects in the cache.
  export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
  cmake --preset "$preset" >"build/$preset.log" 2>&1 || {
    cat "build/$preset.log" >&2
    die "cmake couldn't configure the preset $preset"
  }
  cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet || die "the preset $preset doesn't build"
}
