// Administrator rights by sudo: PAM checks the password, the askpass program
// asks for it.

#include "platform/admin_script.h"

#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/common/admin_script_source.h"
#include "platform/linux/askpass_contract.h"
#include "platform/linux/environment.h"
#include "platform/linux/file_root_linux.h"

namespace platform {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

// What a program that starts another says of one that does not start.
constexpr int kCannotExecute = 126;
constexpr int kNotFound = 127;

// What sudo says when the askpass program does not start, when it gave no password,
// and to a user whom no rule allows the command.
constexpr std::string_view kAskpassFailed = "sudo: unable to run ";
constexpr std::string_view kNoPassword = "sudo: no password was provided";
constexpr std::array kNotAllowed = {"is not in the sudoers file"sv, "may not run sudo"sv,
                                    "not allowed to execute"sv};

// A script that rolls back gets this long; an interruption takes a second at most.
constexpr auto kPatience = 500ms;

enum class Rights { user, administrator };

/// The one child of the execution that is going on, and how to end it from
/// another thread.
class Execution {
 public:
  /// Launches the child unless there was an interruption. False if there was.
  bool launch(ChildProcess& child, Rights rights, std::optional<std::string>& problem) {
    const std::lock_guard lock(mutex_);
    if (isInterrupted_) return false;
    problem = child.launch();
    if (!problem) child_ = &child;
    rights_ = rights;
    return true;
  }

  void finished() {
    const std::lock_guard lock(mutex_);
    child_ = nullptr;
  }

  bool interrupt() {
    const std::lock_guard lock(mutex_);
    isInterrupted_ = true;
    if (!child_) return true;
    return rights_ == Rights::user ? child_->end(kPatience) : askToEnd();
  }

 private:
  /// sudo passes the request on. It is not killed: its script would go on without it.
  bool askToEnd() const {
    constexpr int kRequests = 5;
    for (int request = 0; request < kRequests && child_->isRunning(); ++request) {
      child_->terminate();
      for (auto waited = 0ms; waited < kPatience / kRequests && child_->isRunning(); waited += 5ms)
        std::this_thread::sleep_for(5ms);
    }
    return !child_->isRunning();
  }

  std::mutex mutex_;
  bool isInterrupted_ = false;
  ChildProcess* child_ = nullptr;
  Rights rights_ = Rights::user;
};

Execution execution;
std::mutex oneAtATime;

struct Outcome {
  int status = 0;
  std::string standardError;
};

bool contains(std::string_view text, std::string_view phrase) {
  return text.find(phrase) != std::string_view::npos;
}

/// Text that can be shown and logged, whatever a script has written.
std::string readable(const std::string& bytes) {
  std::string text;
  utf8::replace_invalid(bytes.begin(), bytes.end(), std::back_inserter(text));
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Runs a program to its end.
Outcome run(const std::string& program, const std::vector<std::string>& arguments,
            std::map<std::string, std::string> environment, Rights rights = Rights::user) {
  // Of a script that says much, the end counts.
  constexpr std::size_t kMost = 65536;
  std::string said;
  int status = 0;
  {
    ChildProcess child(program, arguments,
                       [&said](std::string_view piece) {
                         said += piece;
                         if (said.size() > 2 * kMost) said.erase(0, said.size() - kMost);
                       },
                       {Capture::errors, std::move(environment)});
    std::optional<std::string> problem;
    if (!execution.launch(child, rights, problem)) return {kAdminScriptCancelled, ""};
    if (problem) return {kNotFound, *problem};
    status = child.wait();
    execution.finished();
  }
  return {status, readable(said)};
}

/// Runs a program of this user. When this process dies, the shell around the program gets
/// SIGTERM and passes it on to all that the program has started. Its status is the program's:
/// a wait that the signal interrupts is no end.
Outcome runAsUser(const std::string& program, const std::string& argument,
                  std::map<std::string, std::string> environment) {
  constexpr const char* kSetpriv = "/usr/bin/setpriv";
  if (::access(kSetpriv, X_OK) != 0) return run(program, {argument}, std::move(environment));
  const char* const asOneGroup = R"(trap 'trap "" TERM; kill -TERM 0' TERM
"$@" & child=$!
while wait $child; status=$?; kill -0 $child; do :; done 2>&-
exit $status)";
  return run(kSetpriv,
             {"--pdeathsig", "TERM", "/bin/sh", "-c", asOneGroup, "sh", program, argument},
             std::move(environment));
}

/// The program that asks for the password.
std::string askpassProgram() {
  if (const char* own = linux_::variable("SUDO_ASKPASS")) return own;
  return (bundleLocation() / "Contents/Helpers/askpass").string();
}

/// Why the password cannot be asked for; absent if it can.
std::optional<AdminScriptError> missingAskpass() {
  const std::string program = askpassProgram();
  if (::access(program.c_str(), X_OK) == 0) return std::nullopt;
  return AdminScriptError{std::nullopt, program + ": " + std::strerror(errno)};
}

AdminScriptError cancelled() {
  return {kAdminScriptCancelled, "User canceled."};
}

std::optional<AdminScriptError> result(const Outcome& outcome) {
  if (outcome.status == 0) return std::nullopt;
  return AdminScriptError{outcome.status, outcome.standardError};
}

/// For the askpass program: whose prompt it is.
std::map<std::string, std::string> askpassEnvironment() {
  return {{linux_::kInstallerProcessVariable, std::to_string(::getpid())}};
}

/// The password is not looked at: if the askpass program ends with 0, the script
/// runs as this user.
std::optional<AdminScriptError> runBelow(const std::filesystem::path& root,
                                         const AdminScript& script) {
  const Outcome asked = runAsUser(askpassProgram(), script.prompt, askpassEnvironment());
  const bool isNotRun = asked.status == kCannotExecute || asked.status == kNotFound;
  if (isNotRun || contains(asked.standardError, linux_::kCannotAsk)) return result(asked);
  if (asked.status != 0) return cancelled();
  return result(runAsUser("/bin/sh", script.path, {{"INSTALL_ROOT", root.string()}}));
}

std::optional<AdminScriptError> runWithSudo(const AdminScript& script) {
  auto environment = askpassEnvironment();
  environment["SUDO_ASKPASS"] = askpassProgram();
  // Its messages are read below, and LANGUAGE would win over LC_ALL.
  environment["LC_ALL"] = "C.UTF-8";
  environment["LANGUAGE"] = "";
  // In a prompt of sudo a percent sign introduces an escape.
  std::string prompt;
  for (const char c : script.prompt) prompt.append(c == '%' ? 2 : 1, c);
  const char* const usual = "/usr/bin/sudo";
  const std::string sudo = ::access(usual, X_OK) == 0 ? usual : "sudo";
  // An askpass program of the user's does not end with this process. A password that is
  // given to it afterwards starts nothing.
  const char* const ifStillWanted = R"(kill -0 "$1" && exec /bin/sh "$2")";
  const Outcome outcome = run(sudo,
                              {"-A", "-k", "-p", prompt, "--", "/bin/sh", "-c", ifStillWanted, "sh",
                               std::to_string(::getpid()), script.path},
                              environment, Rights::administrator);
  if (outcome.status == 0) return std::nullopt;
  const std::string& said = outcome.standardError;
  if (contains(said, linux_::kCannotAsk) || contains(said, kAskpassFailed)) return result(outcome);
  if (outcome.status == kAdminScriptCancelled || contains(said, kNoPassword)) return cancelled();
  if (std::any_of(kNotAllowed.begin(), kNotAllowed.end(),
                  [&](std::string_view words) { return contains(said, words); }))
    return AdminScriptError{outcome.status, "not authorized: " + said};
  return result(outcome);
}

}  // namespace

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  const auto script = parseAdminScriptSource(source);
  if (!script) return adminScriptSyntaxError(source);

  const std::lock_guard lock(oneAtATime);
  const auto root = linux_::fileRoot();
  if (!root && ::geteuid() == 0) return result(runAsUser("/bin/sh", script->path, {}));
  if (auto missing = missingAskpass()) return missing;
  return root ? runBelow(*root, *script) : runWithSudo(*script);
}

bool interruptAdminScript() {
  return execution.interrupt();
}

}  // namespace platform
