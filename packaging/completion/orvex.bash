# bash completion for the commands that people call: what their --help names.

_orvex_words() {
  "$@" --help 2>/dev/null | awk '
    /^[^ ].*:$/ { block = $0 }
    block == "Commands:" && /^  [a-z]/ { print $1 }
    /^  -/ { sub(/[ =:].*/, "", $1); count = split($1, names, ","); for (n = 1; n <= count; ++n) print names[n] }'
}

_orvex() {
  local word=${COMP_WORDS[COMP_CWORD]} words command=
  COMPREPLY=()
  case ${1##*/} in
    orvex-tv | orvex-pc) [ "$COMP_CWORD" -eq 1 ] || command=${COMP_WORDS[1]} ;;
  esac
  case $command:$word in
    *:-*) words=$(_orvex_words "$1" $command) ;;
    get: | set: | get:* | set:*) words=$("$1" list 2>/dev/null | awk '{ print $1 }') ;;
    :*) words=$(_orvex_words "$1" | grep -v '^-') ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -o default -F _orvex orvex-tv orvex-testsound orvex-replay orvex-sweep orvex-pc orvex-delay
