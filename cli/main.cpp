// The command line: installation, activation, diagnosis and removal without a
// window.

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <string>

#include "cli/commands.h"
#include "platform/common/program_options.h"

namespace {

/// What the options of all commands say.
struct Options {
  bool json = false;
  WaitOptions wait;
  bool once = false;
  bool machineOnly = false;
  UninstallOptions uninstall;
};

void addEveryonesOptions(CLI::App& command, Options& options) {
  platform::addCommonOptions(command);
  command.add_flag("--json", options.json, "tell what happens in lines of JSON on standard output");
}

CLI::Option* addGoEnable(CLI::App& command, Options& options) {
  return command.add_flag("--go-enable", options.wait.goEnable,
                          "ask for enabling once more and open the keyboard settings");
}

CLI::Option* addNoWait(CLI::App& command, Options& options) {
  return command.add_flag("--no-wait", options.wait.noWait,
                          "leave instead of waiting for the user's approval");
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  std::string name = "install";
  std::function<int(EventOutput&)> run = [&](EventOutput& output) {
    return runInstall(output, options.wait);
  };

  CLI::App program("Installs the input method and waits until it is enabled.", "orvane-install");
  program.require_subcommand(0, 1);
  program.footer(
      "Without a command it installs. Exit status: 0 success, 1 failed, 2 authorisation\n"
      "refused, 3 left while waiting for approval, 64 bad usage.");
  addEveryonesOptions(program, options);
  const auto installOptions = {addGoEnable(program, options), addNoWait(program, options)};

  const auto addCommand = [&](const char* command, const char* description,
                              const std::function<int(EventOutput&)>& function) {
    CLI::App& added = *program.add_subcommand(command, description);
    addEveryonesOptions(added, options);
    // Options of the default command do not stand before another one.
    for (CLI::Option* const option : installOptions) added.excludes(option);
    added.callback([&name, &run, command, function] {
      name = command;
      run = function;
    });
    return &added;
  };

  CLI::App& install =
      *addCommand("install", "install the input method and wait until it is enabled", run);
  addGoEnable(install, options);
  addNoWait(install, options);

  CLI::App& activate = *addCommand(
      "activate", "enable, for this user, the input method that is installed already",
      [&](EventOutput& output) { return runActivate(output, options.wait, options.once); });
  addGoEnable(activate, options);
  addNoWait(activate, options);
  activate.add_flag("--once", options.once,
                    "do nothing if this has succeeded for this user before");

  CLI::App& doctor =
      *addCommand("doctor", "look at the installation and say what is wrong; changes nothing",
                  [&](EventOutput& output) { return runDoctor(output, options.machineOnly); });
  doctor.add_flag("--machine", options.machineOnly, "only what all users of the machine share");

  CLI::App& uninstall =
      *addCommand("uninstall", "remove the input method",
                  [&](EventOutput& output) { return runUninstall(output, options.uninstall); });
  uninstall.add_flag("--yes", options.uninstall.yes, "ask no question; --json needs it");
  uninstall.add_flag("--purge", options.uninstall.purge,
                     "remove the user's dictionary and settings as well");

  if (const auto status = platform::parseArguments(program, argc, argv)) return *status;
  if (name == "uninstall" && options.json && !options.uninstall.yes) {
    std::cerr << program.get_name() << ": uninstall --json needs --yes\n\n" << uninstall.help();
    return platform::kBadUsage;
  }
  const auto output = options.json ? makeJsonOutput(name) : makeTextOutput(name);
  return run(*output);
}
