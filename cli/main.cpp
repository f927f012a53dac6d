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
    command.add_flag("--json", json, "tell what happens in lines of JSON on standard output");
  };
  const auto addWaitOptions = [&](CLI::App& command) -> std::vector<CLI::Option*> {
    return {command.add_flag("--go-enable", wait.goEnable,
                             "ask for enabling once more and open the keyboard settings"),
            command.add_flag("--no-wait", wait.noWait,
                             "leave instead of waiting for the user's approval")};
  };

  CLI::App program("Installs the input method and waits until it is enabled.", "orvane-install");
  program.require_subcommand(0, 1);
  program.option_defaults()->disable_flag_override();  // "--json=5" is a mistake
  addEveryonesOptions(program);
  const auto installOptions = addWaitOptions(program);

  const auto addCommand = [&](const char* command, const char* description, const char* more,
                              const std::function<int(EventOutput&)>& function) -> CLI::App& {
    CLI::App& added = *program.add_subcommand(command, description);
    added.footer(more);
    addEveryonesOptions(added);
    // Options of the default command do not stand before another one.
    for (CLI::Option* const option : installOptions) added.excludes(option);
    added.callback([&, command, function] {
      name = command;
      run = function;
      if (name == "uninstall" && json && !removal.yes)
        throw CLI::ValidationError("uninstall --json", "needs --yes");
    });
    return added;
  };

  addWaitOptions(addCommand(
      "install", "install the input method and wait until it is enabled",
      "Asks for an administrator's password. Exit status: 0 success, 1 failed, 2 authorisation\n"
      "refused, 3 left while waiting for approval.",
      run));

  CLI::App& activate = addCommand(
      "activate", "enable, for this user, the input method that is installed already",
      "Asks for no password. Exit status: 0 success, 1 failed, 3 left while waiting for approval.",
      [&](EventOutput& output) { return runActivate(output, wait, once); });
  addWaitOptions(activate);
  activate.add_flag("--once", once, "do nothing if this has succeeded for this user before");

  addCommand("doctor", "look at the installation and say what is wrong; changes nothing",
             "Exit status: 0 nothing fails, 1 something fails.",
             [&](EventOutput& output) { return runDoctor(output, machineOnly); })
      .add_flag("--machine", machineOnly, "only what all users of the machine share");

  CLI::App& uninstall = addCommand(
      "uninstall", "remove the input method",
      "The user's dictionary and settings stay, unless --purge is given. Exit status: 0 success,\n"
      "1 failed, 2 authorisation refused or the question answered with no.",
      [&](EventOutput& output) { return runUninstall(output, removal); });
  uninstall.add_flag("--yes", removal.yes, "ask no question; --json needs it");
  uninstall.add_flag("--purge", removal.purge, "remove the user's dictionary and settings as well");
  // Last: what is added later would have it too.
  program.footer(
      "Without a command it installs. Exit status: 0 success, 1 failed, 2 authorisation\n"
      "refused, 3 left while waiting for approval, 64 bad usage.");

  if (const auto status = platform::parseArguments(program, argc, argv)) return *status;
  const auto output = json ? makeJsonOutput(name) : makeTextOutput(name);
  const int status = run(*output);
  if (std::cout.flush()) return status;
  std::cerr << "orvane-install: not all of the output could be written" << std::endl;
  return status == kSuccess ? kFailed : status;
}
