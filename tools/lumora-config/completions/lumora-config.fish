# fish completion for lumora-config

# Asks the program, using the profile that the command line names.
function __lumora_config_ask
    set -l words (commandline -opc)
    set -l folders
    for option in --profile --config-dir --data-dir --state-dir --resources-dir --plugin-dir
        if set -l at (contains -i -- $option $words); and set -q words[(math $at + 1)]
            set -a folders $option $words[(math $at + 1)]
        end
    end
    contains -- --trust $words; and set -a folders --trust
    $words[1] $folders $argv 2>/dev/null
end

function __lumora_config_keys
    __lumora_config_ask list | string match -r -g '^\*?\s+(\S+)\s+"'
end

function __lumora_config_stores
    __lumora_config_ask stores | string match -r -g '^\s*-?\d+\s+(\S+)'
end

complete -c lumora-config -f

complete -c lumora-config -s h -l help -d 'Print the help'
complete -c lumora-config -l version -d 'Print the version'
complete -c lumora-config -l profile -x -a '(__fish_complete_directories)' -d 'Folder with config, data, state and resources'
complete -c lumora-config -l config-dir -x -a '(__fish_complete_directories)' -d 'The configuration directory'
complete -c lumora-config -l data-dir -x -a '(__fish_complete_directories)' -d 'Application data'
complete -c lumora-config -l state-dir -x -a '(__fish_complete_directories)' -d 'Logs and the lock'
complete -c lumora-config -l resources-dir -x -a '(__fish_complete_directories)' -d 'Installed resources'
complete -c lumora-config -l plugin-dir -x -a '(__fish_complete_directories)' -d 'Folder of the plug-in'
complete -c lumora-config -n 'not __fish_seen_subcommand_from get' -l store -r -F -d 'A read-only store: FILE.xml:NAME:PRIORITY[:cache]'
complete -c lumora-config -l bootstrap -r -F -d "The installer's file: FILE:PRIORITY"
complete -c lumora-config -l json -d 'One JSON object a line'
complete -c lumora-config -s v -l verbose -d 'Log lines on standard error'
complete -c lumora-config -l show-secrets -d 'Show sensitive values'
complete -c lumora-config -l trust -d 'Use folders of others, too'
complete -c lumora-config -l offline -d 'Do not ask a running client'
complete -c lumora-config -l live -d 'Fail if no running client can be asked'

complete -c lumora-config -n __fish_use_subcommand -a get -d 'Show the value of a key'
complete -c lumora-config -n __fish_use_subcommand -a explain -d "Show every store's opinion of a key"
complete -c lumora-config -n __fish_use_subcommand -a list -d 'List keys, values and stores'
complete -c lumora-config -n __fish_use_subcommand -a stores -d 'List the stores of the chain'
complete -c lumora-config -n __fish_use_subcommand -a report -d 'Write the report of all stores'
complete -c lumora-config -n __fish_use_subcommand -a log -d 'Show the settings report of the log'
complete -c lumora-config -n __fish_use_subcommand -a doctor -d 'Examine the profile on the disk'
complete -c lumora-config -n __fish_use_subcommand -a set -d "Set the user's value of a key"
complete -c lumora-config -n __fish_use_subcommand -a reset -d "Take the user's value of a key back"
complete -c lumora-config -n __fish_use_subcommand -a provision -d 'Take the settings of a provisioning URL'
complete -c lumora-config -n __fish_use_subcommand -a reset-provisioning -d 'Allow another provisioning URL'
complete -c lumora-config -n __fish_use_subcommand -a mdm -d 'Push a document of the device management'
complete -c lumora-config -n __fish_use_subcommand -a import-policy -d 'Take a policy file for this user'
complete -c lumora-config -n __fish_use_subcommand -a remove-store -d 'Remove a store and its cached copy'
complete -c lumora-config -n __fish_use_subcommand -a restore -d 'Put back a file that was moved aside'
complete -c lumora-config -n __fish_use_subcommand -a reset-data -d 'Reset the client'
complete -c lumora-config -n __fish_use_subcommand -a serve -d 'Run a client with the profile'
complete -c lumora-config -n __fish_use_subcommand -a watch -d 'Print each change of the running client'
complete -c lumora-config -n __fish_use_subcommand -a shell -d 'Read commands from standard input'

complete -c lumora-config -n '__fish_seen_subcommand_from get explain list set reset watch' -a '(__lumora_config_keys)'
complete -c lumora-config -n '__fish_seen_subcommand_from remove-store' -a '(__lumora_config_stores)'
complete -c lumora-config -n '__fish_seen_subcommand_from mdm import-policy restore' -F

complete -c lumora-config -n '__fish_seen_subcommand_from get' -l origin -d 'With the store that it came from'
complete -c lumora-config -n '__fish_seen_subcommand_from get' -l admin -d "The administrator's value"
complete -c lumora-config -n '__fish_seen_subcommand_from get' -l store -x -a '(__lumora_config_stores)' -d 'What this store says'
complete -c lumora-config -n '__fish_seen_subcommand_from report' -s o -l output -r -F -d 'Into this file'
complete -c lumora-config -n '__fish_seen_subcommand_from report' -l html -r -F -d 'A page for a browser'
complete -c lumora-config -n '__fish_seen_subcommand_from reset-data' -l yes -d 'Really do it'
complete -c lumora-config -n '__fish_seen_subcommand_from reset-data' -l force -d "Remove files that are not the client's, too"
complete -c lumora-config -n '__fish_seen_subcommand_from set' -l force -d 'Set it though XML has no such name or character'
complete -c lumora-config -n '__fish_seen_subcommand_from serve' -l no-changes -d 'Refuse changes by other processes'
complete -c lumora-config -n '__fish_seen_subcommand_from watch' -l follow -d 'Wait for the next client'
