# shellcheck shell=bash
# What ./run, ./test and the scripts here share: messages, Debian packages, the build. Expects `root`, the project's folder.

# shellcheck source=scripts/packages.sh disable=SC2154
. "$root/scripts/packages.sh"

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

fail() {
  say "$@"
  exit 1
}

misused() {
  say "$* (--help tells more)"
  exit 2
}

# quietly LOG COMMAND...: what the command prints goes into the log, and is shown when it fails.
quietly() {
  local log=$1
  shift
  mkdir -p -- "$(dirname -- "$log")"
  "$@" >"$log" 2>&1 && return
  cat -- "$log" >&2
  return 1
}

is_installed() {
  [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

# Asks for a password here, if one is needed at all.
can_be_root() {
  ((EUID == 0)) || { command -v sudo >/dev/null && sudo -v; }
}

# Reads what apt writes to APT::Status-Fd. On a terminal one line changes, elsewhere each quarter is a line.
show_progress() {
  local line last="" words
  while IFS= read -r line; do
    [[ $line =~ ^(dl|pm)status:[^:]*(:[a-z0-9]+)?:([0-9]+)[.,0-9]*: ]] || continue
    words=installing
    if [[ ${BASH_REMATCH[1]} == dl ]]; then words=downloading; fi
    if [[ -t 2 ]]; then words+=", ${BASH_REMATCH[3]} %"; else words+=", $((BASH_REMATCH[3] / 25 * 25)) %"; fi
    [[ $words != "$last" ]] || continue
    last=$words
    if [[ -t 2 ]]; then printf '\r%s: %s\e[K' "${0##*/}" "$words" >&2; else say "$words"; fi
  done
  if [[ -t 2 && -n $last ]]; then printf '\r\e[K' >&2; fi
}

# Descriptor 3 is opened after sudo, which passes on only 0 to 2.
apt_get() {
  # shellcheck disable=SC2016  # expanded by the shell that is started
  as_root env DEBIAN_FRONTEND=noninteractive \
    sh -c 'exec apt-get -q -o DPkg::Lock::Timeout=300 -o APT::Status-Fd=3 "$@" 3>&1 >&2' sh "$@" \
    2>>"$setup_log" </dev/null | show_progress
}

apt_has_lists() { compgen -G '/var/lib/apt/lists/*Packages*' >/dev/null; }

# Package lists grow old: the mirror may have dropped the version that they name, so a failure gets one retry.
apt_install() {
  if apt_has_lists && apt_get install --no-install-recommends -y "$@"; then return; fi
  say "updating apt's package lists"
  apt_get update && apt_get install --no-install-recommends -y "$@"
}

# Ends the script where no package names are known: what is missing would show as an error in the middle of the build.
refuse_unknown_release() {
  local group names=()
  for group in "$@"; do
    local -n packages=${group}_packages
    names+=("${packages[@]}")
  done
  fail "packages are installed on Debian 12 and 13 only, and this is $(os_release PRETTY_NAME). Please install what these" \
    "Debian packages contain: ${names[*]}; then go on with: CORVANA_NO_INSTALL=1 $0"
}

# install_missing GROUP...: the groups are those of packages.sh, such as build.
install_missing() {
  local group package missing=() all=() setup_log="$root/build/setup.log"
  [[ -z ${CORVANA_NO_INSTALL-} ]] || return 0
  add_packages_of_release || refuse_unknown_release "$@"
  for group in "$@"; do
    local -n packages=${group}_packages
    missing=()
    for package in "${packages[@]}"; do
      is_installed "$package" || missing+=("$package")
    done
    ((${#missing[@]})) || continue
    say "missing for ${purpose_of_packages[$group]}: ${missing[*]}"
    all+=("${missing[@]}")
  done
  ((${#all[@]})) || return 0
  can_be_root || fail "not allowed to install them. As root: apt-get install --no-install-recommends ${all[*]}"
  mkdir -p -- "$root/build"
  : >"$setup_log"
  apt_install "${all[@]}" && return
  grep '^E: ' "$setup_log" | sort -u >&2 || tail -n 5 -- "$setup_log" >&2
  fail "could not install the packages; the whole log is $setup_log"
}

preset_build_dir() {
  if [[ $1 == release ]]; then echo "$root/build"; else echo "$root/build-$1"; fi
}

# Locks the preset's build folder until this script, or the program that it executes in its place, has ended.
hold_build() {
  local folder
  folder=$(preset_build_dir "$1")
  mkdir -p -- "$folder"
  exec 9>"$folder/.lock"
  flock -n 9 && return
  say "waiting for another script that uses $folder"
  flock 9
}

# configure_preset PRESET [argument]...: warnings are errors in CI, which sets CI. Scripts that share a build folder have to
# use the same compiler options, or each would compile again what another one has built.
configure_preset() {
  local preset=$1 folder werror=OFF
  shift
  folder=$(preset_build_dir "$preset")
  if [[ ${CI-} == true ]]; then werror=ON; fi
  quietly "$folder/configure.log" cmake -S "$root" --preset "$preset" -DCORVANA_WERROR=$werror \
    -DCORVANA_BENCHMARKS=OFF "$@" ||
    fail "configuring preset $preset failed, see above"
}

# build_preset PRESET [target]...: everything when no target is named.
build_preset() {
  local preset=$1
  shift
  say "building preset $preset"
  configure_preset "$preset"
  cmake --build "$(preset_build_dir "$preset")" ${1+--target "$@"} >&2 || fail "building preset $preset failed, see above"
}
