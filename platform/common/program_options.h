// What the command lines of all programs have in common.

#pragma once

#include <CLI/CLI.hpp>
#include <optional>

inline constexpr int kBadUsage = 64;

/// Gives the program --help, --version and the options of the platform, beside
/// those that it has already.
void addCommonOptions(CLI::App& program);

/// Readies the process and reads the arguments, before anything else is done. Absent if the program
/// is to go on, else the status with which it is to end: help or version have been printed, or what
/// is wrong has been said on standard error.
std::optional<int> parseArguments(CLI::App& program, int argc, char** argv);
