# Completions of glintar(1) for bash.

_glintar() {
  local words="" command=${COMP_WORDS[1]} action=${COMP_WORDS[2]} word=$2 before=$3
  [ "$COMP_CWORD" -gt 1 ] || command=""
  [ "$COMP_CWORD" -gt 2 ] || action=""
  case "$before:$command:$action" in
    --format:line:*) words="text json waybar i3bar polybar tmux genmon" ;;
    --format:*) words="text json" ;;
    --fields:*) words="price reference change range sparkline fee" ;;
    --coin:*) words=$(glintar coins list 2>/dev/null | awk '{ print $1 }') ;;
    *::) words="line compare diagnose coins source display --settings --dashboard --demo --help --version" ;;
    *:line:*) words="--once --format --fields --coin --demo --help" ;;
    *:compare:* | *:diagnose:*) words="--format --demo --help" ;;
    *:coins:) words="list search add remove --help" ;;
    *:source:) words="list use key --help" ;;
    *:display:) words="list set --help" ;;
    add:coins:* | --ref:*) ;;
    *:coins:add) words="--ref" ;;
    remove:coins:*) words=$(glintar coins list 2>/dev/null | awk '{ print $1 }') ;;
    use:source:* | key:source:*) words=$(glintar source list 2>/dev/null | cut -c 3- | awk '{ print $1 }') ;;
    set:display:*) words=$(glintar display list 2>/dev/null | awk '{ print $1 }') ;;
    *:display:set) words="true false" ;;
    *:list | search:coins:*) words="--format" ;;
    *:--*) words="--settings --dashboard --demo --help --version" ;;
  esac
  # shellcheck disable=SC2207
  COMPREPLY=($(compgen -W "$words" -- "$word"))
}
complete -F _glintar glintar
