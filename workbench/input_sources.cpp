// input-sources: the input-source service on the command line.

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "platform/common/program_options.h"
#include "platform/linux/input_source_service.h"

namespace {

namespace service = platform::linux_;

constexpr const char* kName = "input-sources";
constexpr const char* kHelp = R"(The input-source service on the command line.

  list        one line per source: identifier, state, name, and * if it is the
              current one, with tabs between them. The state is enabled or disabled, and
              "asked" if the user has to allow or deny the source.
  current     the identifier of the current source
  select ID   makes an enabled source the current one
  allow ID    answers for the user: enables the input method
  deny ID     answers for the user: leaves it disabled)";

void list() {
  for (const auto& source : service::installedInputSources()) {
    std::cout << source->id << '\t' << (source->isEnabled ? "enabled" : "disabled")
              << (source->isAsked ? " asked" : "") << '\t' << source->name
              << (source->isCurrent ? "\t*\n" : "\n");
  }
}

int fail(const std::string& problem, int status) {
  std::cerr << kName << ": " << problem << '\n';
  return status;
}

int change(const std::string& command, const std::string& id) {
  using Operation = platform::Status (*)(const platform::InputSource&);
  static const std::map<std::string, Operation> kOperations = {
      {"select", platform::selectInputSource},
      {"allow", [](const auto& source) { return service::answerForUser(source, true); }},
      {"deny", [](const auto& source) { return service::answerForUser(source, false); }},
  };
  const auto operation = kOperations.find(command);
  if (operation == kOperations.end()) return fail("see --help", platform::kBadUsage);
  const auto source = service::findInputSource(id);
  if (!source) return fail("no input source has the identifier " + id, EXIT_FAILURE);
  if (const auto status = operation->second(source); status != platform::kNoError)
    return fail("cannot " + command + " " + id + ": status " + std::to_string(status),
                EXIT_FAILURE);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words;
  if (const auto status = platform::parseArguments(kName, kHelp, argc, argv, words)) return *status;
  if (words.size() == 2) return change(words[0], words[1]);
  const std::string command = words.size() == 1 ? words[0] : "";
  if (command == "list") {
    list();
  } else if (command == "current") {
    std::cout << platform::copyCurrentKeyboardInputSource()->id << '\n';
  } else {
    return fail("see --help", platform::kBadUsage);
  }
  return EXIT_SUCCESS;
}
