// What `doctor` finds out about an installation. Nothing here changes anything.

#pragma once

#include <string>
#include <vector>

/// One thing looked at.
struct Finding {
  enum class Level { pass, warn, fail };
  enum class Scope {
    machine,  ///< The same for all users.
    user,     ///< Of the user who asks.
  };
  static constexpr const char* kNothingToDo = "无需操作";

  Level level = Level::pass;
  Scope scope = Scope::machine;
  /// What was looked at, a name that stays: "bundle", "version", …
  std::string check;
  /// For the user.
  std::string text;
  /// What the user should do about it.
  std::string next = kNothingToDo;
  /// What was found, for programs; empty if a text says it all.
  std::string value{};
};
using Findings = std::vector<Finding>;

/// Looks at everything, at what all users share only if `machineOnly`. Main thread.
Findings diagnose(bool machineOnly);

/// Whether nothing fails.
bool isHealthy(const Findings& findings);

// The parts, in the order of diagnose(); each adds its findings.
/// The bundle on disk; the others of its kind only matter if it is there.
void checkBundle(Findings& findings);
/// What a run that was killed has left.
void checkLeftovers(Findings& findings);
/// The two logs.
void checkLogs(Findings& findings);
/// What the input-source service knows, and this user's answer.
void checkSources(Findings& findings);
/// The three lists in the user's preferences.
void checkPreferences(Findings& findings);
/// Whether the user could install anew.
void checkAdminRights(Findings& findings);
