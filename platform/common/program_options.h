// What the command lines of all programs have in common.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace platform {

inline constexpr int kBadUsage = 64;

/// Gives the program --help, --version and the options of the platform, beside
/// those that it has already.
void addCommonOptions(CLI::App& program);

/// Reads the arguments, before anything else is done. Absent if the program is to
/// go on, else the status with which it is to end: help or version have been
/// printed, or what is wrong has been said on standard error.
std::optional<int> parseArguments(CLI::App& program, int argc, char** argv);

/// The same for a program that has only the common options. `others` gets the
/// arguments that are none of them, in their order; the caller reads them.
std::optional<int> parseArguments(const std::string& name, const std::string& description, int argc,
                                  char** argv, std::vector<std::string>& others);

}  // namespace platform
