# bash completion for lumora-config
# shellcheck shell=bash

# The options allowed before or after every command, and those with an argument.
_lumora_config_global='-h --help --version --profile --config-dir --data-dir --state-dir --resources-dir --plugin-dir
  --store --bootstrap --json -v --verbose --show-secrets --trust --live --offline'
_lumora_config_with_argument=' --profile --config-dir --data-dir --state-dir --resources-dir --plugin-dir --store --bootstrap
  -o --output --html '
_lumora_config_commands='get explain list stores report log doctor set reset provision reset-provisioning mdm import-policy
  remove-store restore reset-data serve watch shell'

_lumora_config_options_of() {
  case $1 in
    get) echo '--origin --admin --store' ;;
    report) echo '-o --output --html' ;;
    set) echo '--force' ;;
    reset-data) echo '--yes --force' ;;
    serve) echo '--no-changes' ;;
    watch) echo '--follow' ;;
  esac
}

# Asks the program, using the profile that the command line names. The first line is a heading.
_lumora_config_keys() {
  "${COMP_WORDS[0]}" "${_lumora_config_folders[@]}" list 2>/dev/null | awk 'NR > 1 { print $1 == "*" ? $2 : $1 }'
}
_lumora_config_stores() {
  "${COMP_WORDS[0]}" "${_lumora_config_folders[@]}" stores 2>/dev/null | awk 'NR > 1 { print $2 }'
}

_lumora_config() {
  local -r current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command='' word words='' index
  local -a _lumora_config_folders=()
  COMPREPLY=()

  for ((index = 1; index < COMP_CWORD; index++)); do
    word=${COMP_WORDS[index]}
    case $word in
      --*-dir | --profile)
        _lumora_config_folders+=("$word" "${COMP_WORDS[index + 1]}")
        index=$((index + 1))
        ;;
      --trust) _lumora_config_folders+=("$word") ;;
      -*) case $_lumora_config_with_argument in *" $word "*) index=$((index + 1)) ;; esac ;;
      *) command=${command:-$word} ;;
    esac
  done

  case $command:$previous in
    *:--profile | *:--*-dir)
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return
      ;;
    get:--store) words=$(_lumora_config_stores) ;;
    *:--store | *:--bootstrap | *:-o | *:--output | *:--html)
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
      ;;
    *)
      case $command:$current in
        *:-*) words="$_lumora_config_global $(_lumora_config_options_of "$command")" ;;
        :*) words=$_lumora_config_commands ;;
        get:* | explain:* | list:* | set:* | reset:* | watch:*) words=$(_lumora_config_keys) ;;
        remove-store:*) words=$(_lumora_config_stores) ;;
        mdm:* | import-policy:* | restore:*)
          mapfile -t COMPREPLY < <(compgen -f -- "$current")
          return
          ;;
      esac
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _lumora_config lumora-config
