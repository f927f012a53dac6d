#include "cli/program_options.h"

#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/program.h"

void addCommonOptions(CLI::App& program) {
  program.set_help_flag("--help", "show this");
  program.set_version_flag("--version", ORVANE_VERSION, "show the version");
  for (const auto& option : platform::platformOptions()) {
    program
        .add_option_function<std::string>(
            option.name,
            [use = option.use](const std::string& value) {
              if (const auto problem = use(value)) throw CLI::ValidationError(*problem);
            },
            option.description)
        ->type_name(option.valueName)
        ->trigger_on_parse();
  }
}

std::optional<int> parseArguments(CLI::App& program, int argc, char** argv) {
  if (const auto problem = platform::prepareProcess()) {
    std::cerr << program.get_name() << ": " << *problem << std::endl;
    return EXIT_FAILURE;
  }
  try {
    program.parse(argc, argv);
    return std::nullopt;
  } catch (const CLI::Success& request) {
    return program.exit(request);
  } catch (const CLI::ParseError& error) {
    std::cerr << program.get_name() << ": " << error.what() << "\n\n" << program.help();
    return kBadUsage;
  }
}
