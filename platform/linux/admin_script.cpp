// Administrator rights by sudo: PAM checks the password, and an askpass program, or
// sudo itself in a terminal, asks for it.

#include "platform/admin_script.h"

#include <unistd.h>

#include <QProcess>
#include <algorithm>
#include <array>
#include <csignal>
#include <map>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/bundle.h"
#include "platform/common/admin_script_source.h"
#include "platform/linux/askpass_contract.h"
#include "platform/linux/environment.h"
#include "platform/linux/file_root_linux.h"

namespace platform {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

constexpr const char* kSudo = "/usr/bin/sudo";  // no other one gets a password
constexpr const char* kShell = "/bin/sh";
// What sudo says when nobody could be asked for the password, when the user gave
// none, and to a user whom no rule allows the command.
constexpr std::array kNotAsked = {std::string_view(linux_::kCannotAsk), "sudo: unable to run "sv,
                                  "sudo: a terminal is required"sv};
constexpr std::array kNoPassword = {"sudo: no password was provided"sv,
                                    "sudo: a password is required"sv};
constexpr std::array kNotAllowed = {"is not in the sudoers file"sv, "may not run sudo"sv,
                                    "not allowed to execute"sv};

std::mutex oneAtATime;

std::mutex mutex;   // guards the next two
pid_t running = 0;  // what is told to end; a group as a negative number
bool isInterrupted = false;

struct Outcome {
  std::optional<int> status;  // absent if the program was not started
  std::string said;           // on standard error; else why it was not started
};

template <class Phrases>
bool containsOneOf(const std::string& text, const Phrases& phrases) {
  return std::any_of(phrases.begin(), phrases.end(), [&](std::string_view phrase) {
    return text.find(phrase) != std::string::npos;
  });
}

/// Runs a program to its end, in a group of its own unless it is to use the terminal.
Outcome run(const std::string& program, const std::vector<std::string>& arguments,
            const std::map<const char*, std::string>& variables, bool usesTerminal = false) {
  QProcess child;
  auto environment = QProcessEnvironment::systemEnvironment();
  for (const auto& [name, value] : variables)
    environment.insert(name, QString::fromStdString(value));
  child.setProcessEnvironment(environment);
  child.setStandardInputFile(QProcess::nullDevice());
  child.setStandardOutputFile(QProcess::nullDevice());
  if (!usesTerminal) child.setChildProcessModifier([] { ::setpgid(0, 0); });
  QStringList words;
  for (const std::string& argument : arguments) words << QString::fromStdString(argument);
  {
    const std::lock_guard lock(mutex);
    if (isInterrupted) return {kAdminScriptCancelled, ""};
    child.start(QString::fromStdString(program), words);
    if (!child.waitForStarted(-1))
      return {std::nullopt, program + ": " + child.errorString().toStdString()};
    running = static_cast<pid_t>(child.processId());
    // Of a script the shell alone: what it is deleting or putting back, it ends. sudo tells
    // the script, and its prompt is in its group.
    if (!usesTerminal && program != kShell) running = -running;
  }
  child.waitForFinished(-1);
  const std::lock_guard lock(mutex);
  running = 0;
  const bool isKilled = child.exitStatus() == QProcess::CrashExit;
  return {child.exitCode() + (isKilled ? 128 : 0),
          QString::fromUtf8(child.readAllStandardError()).trimmed().toStdString()};
}

std::optional<AdminScriptError> result(const Outcome& outcome) {
  if (outcome.status == 0) return std::nullopt;
  return AdminScriptError{outcome.status, outcome.said};
}

AdminScriptError cancelled() {
  return {kAdminScriptCancelled, "User canceled."};
}

/// The program that asks for the password in a window.
std::string askpassProgram() {
  if (const char* own = linux_::environmentVariable("SUDO_ASKPASS")) return own;
  return (bundleLocation() / "Contents/Helpers/askpass").string();
}

/// The password is not looked at: if the askpass program ends with 0, the script
/// runs as this user. It ends with 1 when the user closes it.
std::optional<AdminScriptError> runBelow(const std::filesystem::path& root,
                                         const AdminScript& script) {
  const Outcome asked = run(askpassProgram(), {script.prompt}, {});
  const bool isClosed = asked.status == 1 || asked.status == 128 + SIGTERM;
  if (isClosed && !containsOneOf(asked.said, kNotAsked)) return cancelled();
  if (asked.status != 0) return result(asked);
  return result(run(kShell, {script.path}, {{"INSTALL_ROOT", root.string()}}));
}

std::optional<AdminScriptError> runWithSudo(const AdminScript& script) {
  const bool usesTerminal = !linux_::environmentVariable("SUDO_ASKPASS") && !linux_::hasDisplay();
  // In a prompt of sudo a percent sign introduces an escape.
  std::string prompt;
  for (const char c : script.prompt) prompt.append(c == '%' ? 2 : 1, c);
  std::vector<std::string> arguments = {"-k", "-p", prompt, "--", "/bin/sh", script.path};
  if (!usesTerminal) arguments.insert(arguments.begin(), "-A");
  // Its messages are read below, and LANGUAGE would win over LC_ALL.
  const Outcome outcome = run(
      kSudo, arguments,
      {{"SUDO_ASKPASS", askpassProgram()}, {"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}}, usesTerminal);
  if (containsOneOf(outcome.said, kNotAsked)) return result(outcome);
  if (containsOneOf(outcome.said, kNoPassword)) return cancelled();
  if (containsOneOf(outcome.said, kNotAllowed))
    return AdminScriptError{outcome.status, "not authorized: " + outcome.said};
  return result(outcome);
}

}  // namespace

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  const auto script = parseAdminScriptSource(source);
  if (!script) return adminScriptSyntaxError(source);

  const std::lock_guard lock(oneAtATime);
  if (const auto root = linux_::fileRoot()) return runBelow(*root, *script);
  if (::geteuid() == 0) return result(run(kShell, {script->path}, {}));
  return runWithSudo(*script);
}

bool interruptAdminScript() {
  constexpr int kRequests = 30;
  for (int request = 0; request < kRequests; ++request) {
    {
      const std::lock_guard lock(mutex);
      isInterrupted = true;
      if (running == 0) return true;
      // A program that is just being started misses the first request.
      ::kill(running, SIGTERM);
    }
    std::this_thread::sleep_for(100ms);
  }
  const std::lock_guard lock(mutex);
  return running == 0;
}

}  // namespace platform
