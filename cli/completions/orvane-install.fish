# fish completion of orvane-install

set -l commands install activate doctor uninstall
set -l none "not __fish_seen_subcommand_from $commands"
set -l waits "not __fish_seen_subcommand_from doctor uninstall"

complete -c orvane-install -f
complete -c orvane-install -n "$none" -a install -d '安装输入法，并等到它启用为止'
complete -c orvane-install -n "$none" -a activate -d '为当前用户启用已安装的输入法'
complete -c orvane-install -n "$none" -a doctor -d '检查安装，说明问题'
complete -c orvane-install -n "$none" -a uninstall -d '移除输入法'

complete -c orvane-install -l json -d '逐行输出 JSON'
complete -c orvane-install -s h -l help -d '显示帮助'
complete -c orvane-install -l version -d '显示版本'
if test (uname) = Linux
    complete -c orvane-install -l root -x -a '(__fish_complete_directories)' -d '一切都放在这个文件夹之下'
    complete -c orvane-install -l home -x -a '(__fish_complete_directories)' -d '用户自己的数据放在这个文件夹'
end

complete -c orvane-install -n "$waits" -l go-enable -d '再请求启用一次，并打开键盘设置'
complete -c orvane-install -n "$waits" -l no-wait -d '不等待用户允许，直接退出'
complete -c orvane-install -n '__fish_seen_subcommand_from activate' -l once -d '当前用户已成功启用过就不再执行'
complete -c orvane-install -n '__fish_seen_subcommand_from doctor' -l machine -d '只检查所有用户共用的部分'
complete -c orvane-install -n '__fish_seen_subcommand_from uninstall' -l yes -d '不询问'
complete -c orvane-install -n '__fish_seen_subcommand_from uninstall' -l purge -d '同时删除用户词库和设置'
