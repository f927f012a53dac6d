// input-sources: the input-source service on the command line.

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <string>

#include "platform/common/program_options.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/input_source_state.h"
#include "platform/program.h"

namespace {

namespace service = platform::linux_;

constexpr int kFailed = 1;

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
  CLI::App program("The input-source service on the command line.", "input-sources");
  program.require_subcommand(1);
  program.fallthrough();  // --root may stand behind the command
  platform::addCommonOptions(program);

  struct Query {
    const char* name;
    const char* description;
    int (*operation)();
  };
  struct Change {
    const char* name;
    const char* description;
    platform::Status (*operation)(const std::string&);
  };
  static constexpr std::array kQueries = {
      Query{"list",
            "one line a source: identifier, state, name, and * if it is the current one, with "
            "tabs between them; the state is enabled or disabled, and asked while the user has "
            "to allow or deny it",
            list},
      Query{"current", "the identifier of the current source", current},
      Query{"watch", "one line each time the enabled sources change, until interrupted", watch},
  };
  static constexpr std::array kChanges = {
      Change{"enable", "enable a source; asks the user if it is not allowed yet",
             service::enableInputSource},
      Change{"disable", "disable a source", service::disableInputSource},
      Change{"select", "make an enabled source the current one", service::selectInputSource},
      Change{"allow", "answer for the user: enable the input method", service::allowInputMethod},
      Change{"deny", "answer for the user: leave it disabled", service::denyInputMethod},
  };
  int status = 0;
  std::string id;
  for (const Query& query : kQueries)
    program.add_subcommand(query.name, query.description)->callback([&query, &status] {
      status = query.operation();
    });
  for (const Change& kind : kChanges) {
    CLI::App* const command = program.add_subcommand(kind.name, kind.description);
    command->add_option("ID", id, "identifier of the source")->required();
    command->callback([&kind, &status, &id] { status = change(kind.name, kind.operation, id); });
  }
  return platform::parseArguments(program, argc, argv).value_or(status);
}
