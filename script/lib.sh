# Functions that the scripts share. A script that sources this file is then in the project's top folder.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Prints the comment at the head of the calling script, and ends it, when its first argument asks for help.
help_if_asked() {
  case "${1:-}" in
    -h | --help)
      sed -n '2,/^[^#]/ { s/^# \{0,1\}//p; }' "script/$(basename "$0")"
      exit 0
      ;;
  esac
}

say() { printf '%s\n' "$*" >&2; }

# configure BUILD_DIR [cmake arguments]: runs CMake and prints nothing unless it fails.
configure() {
  local folder=$1 log
  shift
  if command -v ccache >/dev/null; then
    # Without this sloppiness ccache caches nothing that uses precompiled headers.
    set -- "-DCMAKE_CXX_COMPILER_LAUNCHER=env;CCACHE_SLOPPINESS=pch_defines,time_macros;ccache" "$@"
  fi
  mkdir -p "$folder"
  log=$folder/configure.log
  if ! cmake -S . -B "$folder" -G Ninja "$@" >"$log" 2>&1; then
    cat "$log" >&2
    say "configuring $folder failed; script/bootstrap installs what the build needs"
    return 1
  fi
}

# build_targets BUILD_DIR TARGET...: builds them and shows on a terminal how far it is. What the build prints is shown
# when it fails.
build_targets() {
  local folder=$1 log=$1/demo.log result=0
  shift
  cmake --build "$folder" --target "$@" 2>&1 | tee "$log" | show_steps || result=$?
  if [ $result != 0 ]; then
    tail -n 60 "$log" >&2
  fi
  return $result
}

# Of lines such as "[12/57] Building …", what is in brackets.
show_steps() {
  local line step
  while read -r line; do
    step=${line%%]*}
    if [ -t 2 ] && [ "$line" != "$step" ]; then
      printf '\r    %s ' "${step#[}" >&2
    fi
  done
  [ ! -t 2 ] || [ -z "${step:-}" ] || printf '\r%40s\r' '' >&2
}

# The C++ files of the project, new ones included, one name per line.
cpp_files() { git ls-files --cached --others --exclude-standard --deduplicate -- '*.cpp' '*.h' | while read -r file; do
  [ ! -f "$file" ] || printf '%s\n' "$file"
done; }

# install_packages PACKAGE...: installs those of them that are missing; says nothing when none is. Needs root or sudo.
install_packages() {
  if ! command -v dpkg-query >/dev/null; then
    say "This is no Debian system. Install what these Debian packages hold: $*"
    return 1
  fi
  local package state missing=() install as_root log
  for package in "$@"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  install=(apt-get install -y -qq --no-install-recommends "${missing[@]}")
  if [ "$(id -u)" = 0 ]; then
    as_root=(env)
  elif command -v sudo >/dev/null; then
    as_root=(sudo env)
  else
    say "Packages are missing, and installing them needs root. Run as root:"
    say "  apt-get update && ${install[*]}"
    return 1
  fi

  say "Installing: ${missing[*]}"
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -qq && "${as_root[@]}" DEBIAN_FRONTEND=noninteractive "${install[@]}"; } \
    </dev/null >"$log" 2>&1; then
    tail -n 30 "$log" >&2
    rm -f "$log"
    say "Installing failed."
    return 1
  fi
  rm -f "$log"
}
