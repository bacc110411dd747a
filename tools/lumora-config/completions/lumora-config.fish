# fish completion for lumora-config. The program completes the words itself, so this script contains no list.

function __lumora_config_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l arguments (string replace -r '^~/' "$HOME/" -- $words[2..])
    set -l answer ($words[1] complete -- $arguments 2>/dev/null)
    # The part of the word before a path.
    set -l lead (string replace -rf '^[^\t]*\t' '' -- $answer[1])
    set -l path (string sub -s (math (string length -- "$lead") + 1) -- (commandline -ct))
    switch "$answer[1]"
        case ':files*'
            for candidate in (__fish_complete_path "$path")
                echo "$lead$candidate"
            end
        case ':directories*'
            for candidate in (__fish_complete_directories "$path")
                echo "$lead$candidate"
            end
        case '*'
            string join \n -- $answer[2..]
    end
end

complete -c lumora-config -f -a '(__lumora_config_complete)'
