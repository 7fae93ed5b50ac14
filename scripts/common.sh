# shellcheck shell=bash
# What ./run, ./test and the scripts here share: messages, Debian packages, the build. Expects `root`, the project's folder.

# shellcheck source=scripts/packages.sh disable=SC2154
. "$root/scripts/packages.sh"

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

fail() {
  say "$@"
  exit 1
}

is_installed() {
  [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 "$@" >&2
}

apt_has_lists() { compgen -G '/var/lib/apt/lists/*Packages*' >/dev/null; }

# Package lists grow old: the mirror may have dropped the version that they name, so a failure gets one retry.
apt_install() {
  if apt_has_lists && apt install --no-install-recommends -y "$@"; then return; fi
  say "updating apt's package lists"
  apt update && apt install --no-install-recommends -y "$@"
}

install_missing() {
  local package missing=()
  if ! command -v dpkg-query >/dev/null; then
    say "this is no Debian system, so no package is installed; needed are: $*"
    return
  fi
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((EUID != 0)) && ! command -v sudo >/dev/null; then
    fail "packages are missing and there is no sudo; as root: apt-get install ${missing[*]}"
  fi
  say "installing Debian packages: ${missing[*]}"
  apt_install "${missing[@]}" || fail "could not install these packages: ${missing[*]}"
}

preset_build_dir() {
  if [[ $1 == release ]]; then echo "$root/build"; else echo "$root/build-$1"; fi
}

# Keeps others away from the preset's build folder until this script and what it has become have ended.
hold_build() {
  local folder
  folder=$(preset_build_dir "$1")
  mkdir -p -- "$folder"
  exec 9>"$folder/.lock"
  flock -n 9 && return
  say "waiting for another script that uses $folder"
  flock 9
}

# build_preset PRESET [argument for the configuration]...
build_preset() {
  local preset=$1
  shift
  say "building preset $preset"
  cmake -S "$root" --preset "$preset" "$@" >&2 || fail "configuring preset $preset failed, see above"
  cmake --build "$(preset_build_dir "$preset")" >&2 || fail "building preset $preset failed, see above"
}
