#include "platform/common/program_options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "platform/program.h"

namespace platform {

void addCommonOptions(CLI::App& program) {
  program.set_help_flag("-h,--help", "show this");
  program.set_version_flag("--version", ORVANE_VERSION, "show the version");
  for (const auto& option : platformOptions()) {
    program
        .add_option_function<std::string>(
            option.name,
            [option](const std::string& value) {
              if (const auto problem = option.use(value))
                throw CLI::ValidationError(option.name, *problem);
            },
            option.description)
        ->type_name(option.valueName)
        ->trigger_on_parse();
  }
}

std::optional<int> parseArguments(CLI::App& program, int argc, char** argv) {
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

std::optional<int> parseArguments(const std::string& name, const std::string& description, int argc,
                                  char** argv, std::vector<std::string>& others) {
  CLI::App program(description, name);
  program.allow_extras();
  addCommonOptions(program);
  const auto status = parseArguments(program, argc, argv);
  others = program.remaining();
  return status;
}

}  // namespace platform
