#!/usr/bin/env bash
# link.sh COMMAND…: runs the command with each library given once. The linker would
# note one twice in the program, and new systems may refuse to start it.
declare -A given
words=()
for word; do
  if [[ $word == *.dylib ]]; then
    [[ -z ${given[$word]:-} ]] || continue
    given[$word]=yes
  fi
  words+=("$word")
done
exec "${words[@]}"
