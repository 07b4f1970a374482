# Lets bash complete the commands and options of kestrane-publish, as the tool itself lists them:
#   source kestrane-publish.bash
_kestrane_publish() {
  local tool=${1/#\~/"$HOME"} word=${COMP_WORDS[COMP_CWORD]} commands command words=
  commands=$("$tool" --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
  command=$(printf '%s\n' "${COMP_WORDS[@]:1:COMP_CWORD-1}" | grep -m1 -xF -- "$commands") || true
  if [[ $word == -* ]]; then
    words=$("$tool" ${command:+"$command"} --help 2>/dev/null | sed -nE 's/^ +(-h,)?(--[a-z-]+).*/\2/p')
  elif [[ -z $command && ${COMP_WORDS[COMP_CWORD-1]} != --config ]]; then
    words=$commands
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _kestrane_publish kestrane-publish
