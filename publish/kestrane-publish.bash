# Lets bash complete the commands and options of kestrane-publish, as the tool itself lists them:
#   source kestrane-publish.bash
_kestrane_publish() {
  local word=${COMP_WORDS[COMP_CWORD]} words=
  if ((COMP_CWORD == 1)); then
    words=$("$1" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
  elif [[ $word == -* ]]; then
    words=$("$1" "${COMP_WORDS[1]}" --help | sed -nE 's/^ +(-h,)?(--[a-z-]+).*/\2/p')
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _kestrane_publish kestrane-publish
