# bash completion of orvane-install

_orvane_install() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local everywhere='--json -h --help --version' linux='' command='' index
  [[ $OSTYPE == linux* ]] && linux='--root --home'
  COMPREPLY=()

  if [[ $previous == --root || $previous == --home ]]; then
    local IFS=$'\n' # one answer a line
    # shellcheck disable=SC2207 # macOS has bash 3.2, without mapfile
    COMPREPLY=($(compgen -d -- "$word"))
    compopt -o filenames 2>/dev/null
    return 0
  fi
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      --root | --home) index=$((index + 1)) ;;
      install | activate | doctor | uninstall)
        command=${COMP_WORDS[index]}
        break
        ;;
    esac
  done

  local options
  case $command in
    activate) options='--go-enable --no-wait --once' ;;
    doctor) options='--machine' ;;
    uninstall) options='--yes --purge' ;;
    install) options='--go-enable --no-wait' ;;
    *) options='install activate doctor uninstall --go-enable --no-wait' ;;
  esac
  # shellcheck disable=SC2207
  COMPREPLY=($(compgen -W "$options $everywhere $linux" -- "$word"))
}

complete -F _orvane_install orvane-install
