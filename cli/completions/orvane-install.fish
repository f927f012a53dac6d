# fish completion of orvane-install

set -l commands install activate doctor uninstall
set -l none "not __fish_seen_subcommand_from $commands"
set -l waits "not __fish_seen_subcommand_from doctor uninstall"

complete -c orvane-install -f
complete -c orvane-install -n "$none" -a install -d 'install the input method'
complete -c orvane-install -n "$none" -a activate -d 'enable for this user what is installed already'
complete -c orvane-install -n "$none" -a doctor -d 'look at the installation and say what is wrong'
complete -c orvane-install -n "$none" -a uninstall -d 'remove the input method'

complete -c orvane-install -l json -d 'tell what happens in lines of JSON'
complete -c orvane-install -s h -l help -d 'show what the command does, and its options'
complete -c orvane-install -l version -d 'show the version'
if test (uname) = Linux
    complete -c orvane-install -l root -x -a '(__fish_complete_directories)' -d 'keep everything below this folder'
    complete -c orvane-install -l home -x -a '(__fish_complete_directories)' -d "keep the user's own stores in this folder"
end

complete -c orvane-install -n "$waits" -l go-enable -d 'ask once more and open the keyboard settings'
complete -c orvane-install -n "$waits" -l no-wait -d "leave instead of waiting for the user's approval"
complete -c orvane-install -n '__fish_seen_subcommand_from activate' -l once -d 'do nothing if it has succeeded before'
complete -c orvane-install -n '__fish_seen_subcommand_from doctor' -l machine -d 'only what all users share'
complete -c orvane-install -n '__fish_seen_subcommand_from uninstall' -l yes -d 'ask no question'
complete -c orvane-install -n '__fish_seen_subcommand_from uninstall' -l purge -d "remove the user's dictionary and settings as well"
