# bash completion for lumora-config. The program completes the words itself, so this script contains no list.
# shellcheck shell=bash

_lumora_config() {
  local -a words=() answer=()
  local word current=${COMP_WORDS[COMP_CWORD]} shared index lead
  # bash splits words at colons: FILE:NAME:PRIORITY.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    if [ ${#words[@]} -gt 0 ] && [[ $word == :* || ${words[-1]} == *: ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
  done

  mapfile -t answer < <("${COMP_WORDS[0]/#\~\//$HOME/}" complete -- "${words[@]/#\~\//$HOME/}" 2>/dev/null)
  COMPREPLY=()
  [ "$current" != = ] || current=''
  # The part of the word before a path, unless bash has split the word there.
  lead=${answer[0]:-}
  case $lead in *$'\t'*) lead=${lead#*$'\t'} ;; *) lead='' ;; esac
  [[ $current == "$lead"* ]] || lead=''
  case ${answer[0]:-} in
    :files*)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -P "$lead" -f -- "${current#"$lead"}")
      return
      ;;
    :directories*)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -P "$lead" -d -- "${current#"$lead"}")
      return
      ;;
  esac
  COMPREPLY=("${answer[@]:1}")
  COMPREPLY=("${COMPREPLY[@]%%$'\t'*}")

  # bash replaces the word with what the candidates share, case-sensitively. It must not delete what was typed.
  shared=${COMPREPLY[0]:-}
  for word in "${COMPREPLY[@]}"; do
    while [[ $word != "$shared"* ]]; do shared=${shared%?}; done
  done
  if [ ${#shared} -lt ${#current} ]; then
    for index in "${!COMPREPLY[@]}"; do COMPREPLY[index]=$current${COMPREPLY[index]:${#current}}; done
  fi
}

complete -F _lumora_config lumora-config
