// The command line: installation, activation, diagnosis and removal without a
// window.

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "platform/common/program_options.h"

int main(int argc, char** argv) {
  bool json = false;
  bool once = false;
  bool machineOnly = false;
  WaitOptions wait;
  UninstallOptions removal;
  std::string name = "install";
  std::function<int(EventOutput&)> run = [&](EventOutput& output) {
    return runInstall(output, wait);
  };

  const auto addEveryonesOptions = [&](CLI::App& command) {
    platform::addCommonOptions(command);
    command.add_flag("--json", json, "在标准输出逐行输出 JSON");
  };
  const auto addWaitOptions = [&](CLI::App& command) -> std::vector<CLI::Option*> {
    return {command.add_flag("--go-enable", wait.goEnable, "再请求启用一次，并打开键盘设置"),
            command.add_flag("--no-wait", wait.noWait, "不等待用户允许，直接退出")};
  };

  CLI::App program("安装输入法，并等到它启用为止。", "orvane-install");
  program.require_subcommand(0, 1);
  addEveryonesOptions(program);
  const auto installOptions = addWaitOptions(program);

  const auto addCommand = [&](const char* command, const char* description, const char* more,
                              const std::function<int(EventOutput&)>& function) -> CLI::App& {
    CLI::App& added = *program.add_subcommand(command, description)->group("命令");
    added.footer(more);
    addEveryonesOptions(added);
    // Options of the default command do not stand before another one.
    for (CLI::Option* const option : installOptions) added.excludes(option);
    added.callback([&, command, function] {
      name = command;
      run = function;
      if (name == "uninstall" && json && !removal.yes)
        throw CLI::ValidationError("uninstall --json 必须同时加 --yes");
    });
    return added;
  };

  addWaitOptions(addCommand(
      "install", "安装输入法，并等到它启用为止",
      "需要管理员密码。退出状态：0 成功，1 失败，2 未获得授权，3 等待允许时退出。", run));

  CLI::App& activate =
      addCommand("activate", "为当前用户启用已安装的输入法",
                 "不需要密码。退出状态：0 成功，1 失败，3 等待允许时退出。",
                 [&](EventOutput& output) { return runActivate(output, wait, once); });
  addWaitOptions(activate);
  activate.add_flag("--once", once, "当前用户已成功启用过就不再执行");

  addCommand("doctor", "检查安装，说明问题；不做任何改动", "退出状态：0 没有失败项，1 有失败项。",
             [&](EventOutput& output) { return runDoctor(output, machineOnly); })
      .add_flag("--machine", machineOnly, "只检查所有用户共用的部分");

  CLI::App& uninstall = addCommand(
      "uninstall", "移除输入法",
      "保留用户词库和设置，除非加 --purge。退出状态：0 成功，1 失败，2 未获得授权，或没有确认。",
      [&](EventOutput& output) { return runUninstall(output, removal); });
  uninstall.add_flag("--yes", removal.yes, "不询问；用 --json 时必须加上");
  uninstall.add_flag("--purge", removal.purge, "同时删除用户词库和设置");
  // Last: what is added later would have it too.
  program.footer(
      "不写命令就是安装。退出状态：0 成功，1 失败，2 未获得授权，3 等待允许时退出，64 用法错误。");

  if (const auto status = platform::parseArguments(program, argc, argv)) return *status;
  const auto output = json ? makeJsonOutput(name) : makeTextOutput(name);
  const int status = run(*output);
  if (std::cout.flush()) return status;
  std::cerr << "orvane-install: 输出没有全部写完" << std::endl;
  return status == kSuccess ? kFailed : status;
}
