# fish completion of Orvex's commands, which know themselves what can follow.

function __orvex_words
    set -l words (commandline -opc) (commandline -ct)
    for line in ($words[1] --complete-words $words[2..-1] 2>/dev/null)
        switch $line
            case \tfiles
                __fish_complete_path (commandline -ct)
            case \tfolders
                __fish_complete_directories (commandline -ct)
            case '*'
                echo $line
        end
    end
end

for program in orvex-tv orvex-testsound orvex-replay orvex-sweep orvex-pc orvex-delay
    complete -c $program -f -a '(__orvex_words)'
end
