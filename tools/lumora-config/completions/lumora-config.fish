# fish completion for lumora-config. The program completes the words itself, so this script contains no list.

function __lumora_config_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l arguments (string replace -r '^~/' "$HOME/" -- $words[2..])
    set -l answer ($words[1] complete -- $arguments 2>/dev/null)
    switch "$answer[1]"
        case :files
            __fish_complete_path (commandline -ct)
        case :directories
            __fish_complete_directories (commandline -ct)
        case '*'
            string join \n -- $answer[2..]
    end
end

complete -c lumora-config -f -a '(__lumora_config_complete)'
