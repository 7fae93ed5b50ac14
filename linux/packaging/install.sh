#!/usr/bin/env bash
# Installs a built bundle together with a core, and takes away again exactly what it has installed.
# `sh install.sh` is meant for bash too.
if [ -z "${BASH_VERSION-}" ]; then exec bash "$0" "$@"; fi
set -euo pipefail
shopt -s inherit_errexit

script_dir=$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")
readonly script_dir record_name=.install-manifest core_file=bin/zant
# Where each session starts the login program, and where systemd takes a session's environment from.
readonly login_entry=/etc/xdg/autostart/corvana-proxy-reset.desktop
readonly generator=/usr/lib/systemd/user-environment-generators/40-corvana
readonly login_files=linux/packaging/login
readonly required_files=(Corvana corvana-proxy-reset lib/libflutter_linux_gtk.so logo.png
  "$login_files"/{40-corvana,corvana-proxy-reset.desktop.in})

action=install
core=""
bundle=""
prefix=""
even_if_running=no
unfinished=""

is_chinese() {
  local locale=${LC_ALL:-${LC_MESSAGES:-${LANG-}}}
  case $locale in
    "" | C | C.* | POSIX) ;;
    *) locale=${LANGUAGE:-$locale} ;;
  esac
  [[ $locale == zh* ]]
}

usage() {
  if is_chinese; then usage_in_chinese; else usage_in_english; fi
}

usage_in_english() {
  cat <<'TEXT'
Usage:
  install.sh --core FILE [--bundle FOLDER] [--prefix FOLDER]   installs, or updates what is installed
  install.sh --uninstall [--prefix FOLDER] [--force]           uninstalls

  --core FILE      the core, which becomes bin/zant of the installation; not needed where one is installed already
  --bundle FOLDER  the built program; unless given, this script's folder or, in the sources, build/bundle
  --prefix FOLDER  where to install; this script's folder if it is an installation, otherwise /opt/corvana
  --uninstall      deletes only what this script has installed; settings, logs and other personal files stay
  --force          uninstalls although the program is running
  --help           shows this text

Where the program is in place already, for example from a package, only the core is added.
Installing to /opt/corvana needs root (sudo); a folder of your own doesn't. When root runs it, the script also makes
each login take back a system proxy that a power cut has left behind; linux/packaging/README.md says how to switch that
off.
TEXT
}

usage_in_chinese() {
  cat <<'TEXT'
用法：
  install.sh --core 核心文件 [--bundle 目录] [--prefix 目录]   安装，或更新已有的安装
  install.sh --uninstall [--prefix 目录] [--force]             卸载

  --core 文件    要安装的核心，安装为“安装位置/bin/zant”；安装位置已有核心时可以省略
  --bundle 目录  构建好的程序；默认是本脚本所在的目录，或源代码目录下的 build/bundle
  --prefix 目录  安装位置；默认是本脚本所在的安装位置，否则是 /opt/corvana
  --uninstall    只删除本脚本安装过的文件；设置、日志等个人文件不受影响
  --force        程序正在运行时也卸载
  --help         显示本说明

程序已在安装位置时（例如由软件包安装），只放入核心。
安装到 /opt/corvana 需要管理员权限（sudo）；安装到自己的目录则不需要。
由 root 运行时，还会让每次登录收回断电等情况留下的系统代理；关闭方法见 linux/packaging/README.md。
TEXT
}

# say CHINESE ENGLISH: in the language of the locale. So do the two functions below.
say() {
  is_chinese || shift
  printf 'install.sh: %s\n' "$1"
}

fail() {
  say "错误：$1" "error: $2" >&2
  exit 1
}

misused() {
  say "$1（用法见 install.sh --help）" "$2 (see install.sh --help)" >&2
  exit 2
}

parse_arguments() {
  while (($#)); do
    case $1 in
      --core | --bundle | --prefix)
        [[ -n ${2-} ]] || misused "选项 $1 缺少值" "$1 needs a value"
        printf -v "${1#--}" %s "$2"
        shift
        ;;
      --uninstall) action=uninstall ;;
      --force) even_if_running=yes ;;
      -h | --help) action=usage ;;
      *) misused "未知参数：$1" "unknown argument: $1" ;;
    esac
    shift
  done
}

default_bundle() {
  if [[ -e $script_dir/Corvana ]]; then echo "$script_dir"; else echo "$script_dir/../../build/bundle"; fi
}

default_prefix() {
  if [[ -e $script_dir/$record_name ]]; then echo "$script_dir"; else echo /opt/corvana; fi
}

choose_places() {
  bundle=$(realpath -m -- "${bundle:-$(default_bundle)}")
  prefix=$(realpath -m -- "${prefix:-$(default_prefix)}")
  [[ $prefix != / ]] || fail "安装位置不能是根目录" "the prefix can't be the root folder"
}

require_bundle() {
  local file
  for file in "${required_files[@]}"; do
    [[ -f $bundle/$file ]] || fail "$bundle 中没有 $file，不是构建好的程序；请先构建，或用 --bundle 指定目录" \
      "$bundle has no $file, so it is no built program; build it first, or name its folder with --bundle"
  done
  [[ -x $bundle/Corvana ]] || fail "$bundle/Corvana 不可执行" "$bundle/Corvana is not executable"
}

# The next run would install the installation as a part of the bundle.
require_place_outside_bundle() {
  [[ $prefix != "$bundle"/* ]] || fail "安装位置不能在程序目录 $bundle 里面；请用 --prefix 另选位置" \
    "the prefix can't be inside the program's folder $bundle; choose another one with --prefix"
}

require_core() {
  if [[ -z $core ]]; then
    [[ -x $prefix/$core_file ]] || fail "没有核心；请用 --core 指定核心文件" "there is no core; name one with --core"
    return
  fi
  [[ -f $core ]] || fail "核心文件不存在，或不是普通文件：$core" "the core doesn't exist, or is no regular file: $core"
  [[ -r $core ]] || fail "没有读取核心文件的权限：$core" "no permission to read the core: $core"
  [[ -x $core ]] || fail "核心文件不可执行：$core（可用 chmod +x 修复）" "the core is not executable: $core (see chmod +x)"
}

require_writable() {
  local folder=$prefix
  until [[ -e $folder ]]; do folder=$(dirname -- "$folder"); done
  [[ -d $folder ]] || fail "安装位置不是目录：$folder" "the prefix is no folder: $folder"
  [[ -w $folder ]] || fail "没有写入 $folder 的权限；请用 sudo 运行，或用 --prefix 另选位置" \
    "no permission to write to $folder; use sudo, or choose another place with --prefix"
}

# What earlier runs have installed, one path a line, relative to the prefix; a folder that they made ends in a slash.
recorded() { cat -- "$prefix/$record_name" 2>/dev/null || true; }

files_only() { sed '/\/$/d'; }
folders_only() { sed -n '/\/$/p'; }

write_record() {
  sed '/^$/d' | sort -u >"$prefix/$record_name.new"
  mv -fT -- "$prefix/$record_name.new" "$prefix/$record_name"
}

# lines_beyond TEXT: those lines of standard input that the text doesn't have.
lines_beyond() { grep -vxF -f <(printf '%s' "$1") || true; }

# The bundle's own core is a sample: only a core that was named is installed.
bundle_files() {
  [[ $bundle -ef $prefix ]] && return
  cd -- "$bundle"
  find . -mindepth 1 ! -type d ! -path "./$core_file" ! -path "./$record_name" -printf '%P\n'
}

wanted_files() {
  (bundle_files)
  if [[ -n $core ]]; then echo "$core_file"; fi
}

# Files of a package, or of somebody else, are neither overwritten nor, later, uninstalled.
refuse_foreign_files() {
  local file
  while read -r file; do
    [[ -e $prefix/$file ]] || continue
    fail "$prefix/$file 已存在，但不是本脚本安装的；请先移走它（软件包则先卸载），或用 --prefix 另选位置" \
      "$prefix/$file exists, but not from this script; move it away (or remove its package), or use another --prefix"
  done < <(lines_beyond "$(recorded)" <<<"$1")
}

# Each folder above the files given that isn't there yet, parents first; "./" is the prefix itself. Folders above the
# prefix aren't listed, so an uninstall leaves them.
missing_folders() {
  local path
  if [[ ! -e $prefix ]]; then echo ./; fi
  while read -r path; do
    while [[ $path == */* ]]; do
      path=${path%/*}
      if [[ ! -e $prefix/$path ]]; then echo "$path/"; fi
    done
  done <<<"$1" | sort -u
}

make_folders() {
  local folder
  while read -r folder; do
    mkdir -p -- "$prefix/$folder"
  done <<<"$1"
}

# Renaming leaves no moment without a whole file, and a running program keeps the one that it was started from.
place() {
  local mode=0644
  if [[ -x $1 ]]; then mode=0755; fi
  unfinished=$2.new
  install -T -m "$mode" -- "$1" "$unfinished"
  mv -fT -- "$unfinished" "$2"
}

place_files() {
  local file source
  while read -r file; do
    source=$bundle/$file
    if [[ $file == "$core_file" ]]; then source=$core; fi
    place "$source" "$prefix/$file"
  done <<<"$1"
}

# An update takes away what only the older bundle had.
remove_outdated() {
  local outdated file
  [[ $bundle -ef $prefix ]] && return
  outdated=$(recorded | files_only | lines_beyond "$1"$'\n'"$core_file")
  while read -r file; do
    if [[ -n $file ]]; then rm -f -- "$prefix/$file"; fi
  done <<<"$outdated"
  recorded | lines_beyond "$outdated" | write_record
}

# The numbers of the processes whose program lies in the prefix, as far as the caller may know.
running_processes() {
  local process program
  while read -r -d '' process && read -r -d '' program; do
    if [[ $program == "$prefix"/* ]]; then printf '%s ' "${process#/proc/}"; fi
  done < <(find /proc -mindepth 2 -maxdepth 2 -path '/proc/[0-9]*/exe' -printf '%h\0%l\0' 2>/dev/null || true)
}

# True when the entry starts the login program of this prefix, and not that of a package or of another installation.
is_own_login_entry() { grep -qsxF "Exec=\"$prefix/corvana-proxy-reset\"" "$login_entry"; }

# One such entry on a system is enough. The characters are those that an entry's Exec line reserves even in quotes.
install_login_program() {
  local entry
  [[ $EUID == 0 && ! $bundle -ef $prefix && $prefix != *[\"\`\$\\%]* ]] || return 0
  if [[ -e $login_entry ]] && ! is_own_login_entry; then return 0; fi
  mkdir -p -- "$(dirname -- "$login_entry")" "$(dirname -- "$generator")"
  entry=$(<"$bundle/$login_files/corvana-proxy-reset.desktop.in")
  printf '%s\n' "${entry//@CORVANA_INSTALLED_BUNDLE@/"$prefix"}" >"$login_entry"
  place "$bundle/$login_files/40-corvana" "$generator"
}

# Without corvana-proxy-reset in the record, only a core was added to a package's files, and the entry is the package's.
remove_login_program() {
  if [[ $EUID == 0 ]] && is_own_login_entry && grep -qx corvana-proxy-reset <<<"$1"; then
    rm -f -- "$login_entry" "$generator"
  fi
}

install_bundle() {
  local files folders
  require_bundle
  require_place_outside_bundle
  require_core
  require_writable
  files=$(wanted_files)
  [[ -n $files ]] || fail "$prefix 已有程序和核心；要更换核心，请用 --core 指定" \
    "$prefix has a program and a core already; to replace the core, name one with --core"
  refuse_foreign_files "$files"
  folders=$(missing_folders "$files")
  make_folders "$folders"
  # Before the files, so that an installation that broke off can be repeated or uninstalled.
  printf '%s\n' "$(recorded)" "$folders" "$files" | write_record
  place_files "$files"
  remove_outdated "$files"
  install_login_program
  say "已安装到 $prefix，启动：$prefix/Corvana" "installed to $prefix; start it with $prefix/Corvana"
  if [[ -n $(running_processes) ]]; then
    say "程序正在运行，重新启动后才使用新文件" "the program is running, and uses the new files after a restart"
  fi
}

refuse_while_running() {
  local processes
  [[ $even_if_running == no ]] || return 0
  processes=$(running_processes)
  [[ -z $processes ]] || fail "程序正在运行（进程 ${processes% }）；请先退出，或加上 --force" \
    "the program is running (process ${processes% }); close it first, or add --force"
}

# Nothing outside the prefix is removed, whatever the record says.
remove_recorded() {
  local path
  while read -r path; do
    case /$path in
      *//* | */../*) say "跳过不正确的记录：$path" "skipping a wrong line of the record: $path" >&2 ;;
      */) rmdir -- "$prefix/${path#./}" 2>/dev/null || true ;;
      *) rm -f -- "$prefix/$path" ;;
    esac
  done
}

uninstall() {
  local record
  record=$(recorded)
  [[ -n $record ]] || fail "$prefix 中没有本脚本的安装记录，没有可卸载的文件" \
    "$prefix has no record of this script, so there is nothing to uninstall"
  require_writable
  refuse_while_running
  remove_login_program "$record"
  files_only <<<"$record" | remove_recorded
  rm -f -- "$prefix/$record_name"
  folders_only <<<"$record" | sort -r | remove_recorded
  say "已从 $prefix 卸载" "uninstalled from $prefix"
  if [[ -n $(ls -A -- "$prefix" 2>/dev/null || true) ]]; then
    say "$prefix 中还有不是本脚本安装的文件，已保留" "files in $prefix that this script has not installed were kept"
  fi
}

main() {
  umask 022
  trap 'rm -f -- "$unfinished"' EXIT
  parse_arguments "$@"
  choose_places
  case $action in
    usage) usage ;;
    install) install_bundle ;;
    uninstall) uninstall ;;
  esac
}

main "$@"
