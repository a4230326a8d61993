# What the scripts share. Sourced; leaves the caller in the project's top folder.
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

# configure BUILD_DIR [cmake arguments]: quiet unless it fails.
configure() {
  local folder=$1 log
  shift
  if command -v ccache >/dev/null; then
    # Sloppiness: otherwise it leaves precompiled headers alone.
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

# The C++ files of the project, new ones included, one name per line.
cpp_files() { git ls-files --cached --others --exclude-standard --deduplicate -- '*.cpp' '*.h' | while read -r file; do
  [ ! -f "$file" ] || printf '%s\n' "$file"
done; }
