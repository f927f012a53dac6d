#include "platform/common/program_options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "platform/program.h"

namespace platform {

namespace {

/// The library's own texts are English. They begin with the word that is wrong.
std::string problemIn(const CLI::App& program, const CLI::ParseError& error) {
  std::string text = error.what();
  const std::string word = text.substr(0, text.find_first_of(": "));
  if (dynamic_cast<const CLI::ExtrasError*>(&error))
    return "不认识的参数：" + program.remaining(/*recurse=*/true).front();
  if (dynamic_cast<const CLI::ExcludesError*>(&error)) {
    const std::string option = text.substr(text.rfind(' ') + 1);
    return program.get_subcommand(word)->get_option_no_throw(option)
               ? option + " 要写在 " + word + " 之后"
               : word + " 没有选项 " + option;
  }
  if (!dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return text;
  if (text.ends_with("missing")) return word + " 后面缺少文件夹";
  return text.ends_with("override") ? "--" + word + " 后面不能有值" : word + " 只能写一次";
}

}  // namespace

void addCommonOptions(CLI::App& program) {
  for (const auto& [label, text] :
       {std::pair{"Usage", "用法"}, {"OPTIONS", "选项"}, {"SUBCOMMAND", "命令"}})
    program.get_formatter()->label(label, text);
  program.option_defaults()->group("选项");
  program.option_defaults()->disable_flag_override();  // "--json=5" is a mistake
  program.set_help_flag("-h,--help", "显示帮助");
  program.set_version_flag("--version", ORVANE_VERSION, "显示版本");
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
    if (const auto missing = missingOption()) throw CLI::ValidationError(*missing);
    return std::nullopt;
  } catch (const CLI::Success& request) {
    return program.exit(request);
  } catch (const CLI::ParseError& error) {
    std::cerr << program.get_name() << ": " << problemIn(program, error) << "\n运行 "
              << program.get_name() << (program.get_subcommands({}).empty() ? "" : " COMMAND")
              << " --help 查看用法\n";
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
