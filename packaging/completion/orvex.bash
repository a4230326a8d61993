# bash completion of Orvex's commands, which know themselves what can follow.

_orvex() {
  local line
  COMPREPLY=()
  while IFS= read -r line; do
    case $line in
      $'\tfiles') compopt -o default ;;
      $'\tfolders') compopt -o dirnames ;;
      *) COMPREPLY+=("${line%%$'\t'*}") ;;
    esac
  done < <("$1" --complete-words "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}

complete -F _orvex orvex-tv orvex-testsound orvex-replay orvex-sweep orvex-pc orvex-delay
