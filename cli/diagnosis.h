// What `doctor` finds out about an installation. Nothing here changes anything.

#pragma once

#include <string>
#include <vector>

/// The answer to one check.
struct Finding {
  enum class Level { pass, warn, fail };
  enum class Scope {
    machine,  ///< The same for all users.
    user,     ///< Of the user who asks.
  };
  static constexpr const char* nothingToDo = "无需操作";

  Level level;
  Scope scope;
  /// What was looked at, a name that stays: "bundle", "version", …
  std::string check;
  /// For the user.
  std::string text;
  /// What the user should do about it.
  std::string next;
  /// What was found, for programs; empty if the text says it all.
  std::string value;
};

/// Looks at everything or, with `machineOnly`, at what all users share. A fault that
/// another one explains is left out. Main thread.
std::vector<Finding> diagnose(bool machineOnly);

/// Says that the installed version is newer than the one that this installer brings;
/// empty if it is not, or one of them is unknown.
std::string newerVersionNotice();
