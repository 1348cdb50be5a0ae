# Completion of orvactl for bash. Names of clips are asked from the server.
_orvactl () {
  local IFS=$'\n' word
  COMPREPLY=()
  while read -r word; do
    COMPREPLY+=("$(printf '%q' "$word")")
  done < <("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _orvactl orvactl
