# Completion of routeradvt's command line in bash. Commands and options are those that the program's own help offers.

_routeradvt() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} command='' word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in -*) ;; *) command=$word; break ;; esac
  done

  case $command:$prev in
    *:--via | listen:listen | neighbors:--intf)
      mapfile -t COMPREPLY < <(compgen -W "$(ls /sys/class/net)" -- "$cur")
      return
      ;;
  esac
  case $command:$cur in
    *:-*)
      local options
      options=$("$1" $command --help 2>/dev/null | sed -n 's/^  \(-[[:alnum:]],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
      mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
      ;;
    :* | help:*)
      mapfile -t COMPREPLY < <(compgen -W "$("$1" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z]*\) .*/\1/p')" -- "$cur")
      ;;
    *) mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
  esac
}
complete -o filenames -F _routeradvt routeradvt
