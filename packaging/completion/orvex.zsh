#compdef orvex-tv orvex-testsound orvex-replay orvex-sweep orvex-pc orvex-delay
# zsh completion of Orvex's commands, which know themselves what can follow.

local line
local -a offers
for line in "${(@f)$("$words[1]" --complete-words "${(@)words[2,CURRENT]}" 2>/dev/null)}"; do
  case $line in
    $'\tfiles') _files ;;
    $'\tfolders') _files -/ ;;
    ?*) offers+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}") ;;
  esac
done
(( $#offers )) && _describe word offers
