// input-sources: the input-source service on the command line.

#include <algorithm>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "platform/application.h"
#include "platform/linux/input_source_service.h"

namespace {

namespace service = platform::linux_;

constexpr int kFailed = 1;
constexpr int kBadUsage = 64;

int usage(const std::string& problem) {
  std::cerr << "input-sources: " << problem
            << "\n"
               "usage: input-sources [OPTION] COMMAND\n"
               "  list         one line a source: identifier, state, name and * if it is\n"
               "               the current one, with tabs between them; the state is\n"
               "               enabled or disabled, and asked while the user has to\n"
               "               allow or deny it\n"
               "  current      the identifier of the current source\n"
               "  enable ID    enable a source; asks the user if it is not allowed yet\n"
               "  disable ID   disable a source\n"
               "  select ID    make an enabled source the current one\n"
               "  allow ID     answer for the user: enable the input method\n"
               "  deny ID      answer for the user: leave it disabled\n"
               "  watch        one line each time the enabled sources change, until\n"
               "               interrupted\n"
            << platform::platformOptionsUsage();
  return kBadUsage;
}

int list() {
  for (const auto& source : service::installedInputSources()) {
    std::cout << source.id << '\t' << (source.isEnabled ? "enabled" : "disabled")
              << (source.isAsked ? " asked" : "") << '\t' << source.name
              << (source.isCurrent ? "\t*\n" : "\n");
  }
  return 0;
}

int current() {
  for (const auto& source : service::installedInputSources()) {
    if (source.isCurrent) std::cout << source.id << '\n';
  }
  return 0;
}

int watch() {
  const auto observer = service::observeInputSources(service::WatchedState::enabledSources, [] {
    std::cout << "enabled:";
    for (const auto& source : service::installedInputSources()) {
      if (source.isEnabled) std::cout << ' ' << source.id;
    }
    std::cout << std::endl;
  });
  platform::onTerminationRequest([] { platform::endMainLoop(0); });
  return platform::runMainLoop();
}

int change(const std::string& command, platform::Status (*operation)(const std::string&),
           const std::string& id) {
  if (!service::findInputSource(id)) {
    std::cerr << "input-sources: no input source has the identifier " << id << '\n';
    return kFailed;
  }
  if (const auto status = operation(id); status != platform::kNoError) {
    std::cerr << "input-sources: cannot " << command << ' ' << id << ": status " << status << '\n';
    return kFailed;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (const auto problem = platform::takePlatformOptions(arguments)) return usage(*problem);
  if (arguments.empty()) return usage("a command is missing");

  static const std::map<std::string, std::function<int()>> kQueries = {
      {"list", list}, {"current", current}, {"watch", watch}};
  static const std::map<std::string, platform::Status (*)(const std::string&)> kChanges = {
      {"enable", service::enableInputSource}, {"disable", service::disableInputSource},
      {"select", service::selectInputSource}, {"allow", service::allowInputMethod},
      {"deny", service::denyInputMethod},
  };
  const std::string& command = arguments.front();
  const auto query = kQueries.find(command);
  const auto operation = kChanges.find(command);
  if (query == kQueries.end() && operation == kChanges.end()) {
    return usage("there is no command " + command);
  }
  if (arguments.size() != (query != kQueries.end() ? 1 : 2)) {
    return usage(command + " takes " +
                 (query != kQueries.end() ? "no argument" : "one identifier"));
  }
  return query != kQueries.end() ? query->second()
                                 : change(command, operation->second, arguments[1]);
}
