// Administrator rights by sudo: PAM checks the password, the askpass program
// asks for it.

#include "platform/admin_script.h"

#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <QProcess>
#include <QString>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <string_view>
#include <vector>

#include "platform/bundle.h"
#include "platform/common/admin_script_source.h"
#include "platform/linux/file_root_linux.h"

namespace platform {
namespace {

// What sudo says when the askpass program gave no password.
constexpr std::string_view kNoPassword = "sudo: no password was provided";

/// The one execution at a time, and how to end it from another thread.
class Execution {
 public:
  static Execution& instance() {
    static Execution execution;
    return execution;
  }

  void begin() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !isBusy_; });
    isBusy_ = true;
  }

  void end() {
    const std::lock_guard lock(mutex_);
    isBusy_ = false;
    changed_.notify_all();
  }

  /// False if the child must not be started any more.
  bool mayStart() {
    const std::lock_guard lock(mutex_);
    return !isInterrupted_;
  }

  void started(pid_t child) {
    const std::lock_guard lock(mutex_);
    child_ = child;
    if (isInterrupted_) endProcesses();
  }

  void finished() {
    const std::lock_guard lock(mutex_);
    child_ = 0;
  }

  void interrupt() {
    std::unique_lock lock(mutex_);
    isInterrupted_ = true;
    // Again and again: a program that is just being started is not seen yet.
    do {
      endProcesses();
    } while (!changed_.wait_for(lock, std::chrono::milliseconds(100), [this] { return !isBusy_; }));
  }

 private:
  /// SIGTERM for the child and all below it, as far as this user may: sudo itself
  /// belongs to root, its askpass program to the user.
  void endProcesses() const {
    if (child_ <= 0) return;
    std::multimap<pid_t, pid_t> childrenOf;
    const std::unique_ptr<DIR, int (*)(DIR*)> processes(::opendir("/proc"), ::closedir);
    while (const dirent* entry = processes ? ::readdir(processes.get()) : nullptr) {
      std::ifstream stat(std::string("/proc/") + entry->d_name + "/stat");
      std::string line;
      if (!std::getline(stat, line)) continue;
      // "PID (NAME) STATE PARENT …": the name may hold anything.
      std::istringstream rest(line.substr(line.rfind(')') + 1));
      char state = 0;
      pid_t parent = 0;
      if (rest >> state >> parent) childrenOf.emplace(parent, std::atoi(entry->d_name));
    }
    std::vector<pid_t> toEnd = {child_};
    for (std::size_t next = 0; next < toEnd.size(); ++next) {
      const auto [first, last] = childrenOf.equal_range(toEnd[next]);
      for (auto child = first; child != last; ++child) toEnd.push_back(child->second);
    }
    for (const pid_t process : toEnd) ::kill(process, SIGTERM);
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isBusy_ = false;
  bool isInterrupted_ = false;
  pid_t child_ = 0;
};

struct Outcome {
  int status = 0;
  std::string standardError;
};

/// Runs a program to its end; its standard input is empty.
Outcome run(const QString& program, const QStringList& arguments,
            const QProcessEnvironment& environment) {
  Execution& execution = Execution::instance();
  if (!execution.mayStart()) return {kAdminScriptCancelled, ""};
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  process.start(program, arguments);
  if (!process.waitForStarted(-1))
    return {127, (program + ": " + process.errorString()).toStdString()};
  execution.started(static_cast<pid_t>(process.processId()));
  process.waitForFinished(-1);
  execution.finished();
  const bool isCrashed = process.exitStatus() == QProcess::CrashExit;
  return {isCrashed ? 128 + process.exitCode() : process.exitCode(),
          process.readAllStandardError().trimmed().toStdString()};
}

QString askpassProgram() {
  const QString own = qEnvironmentVariable("SUDO_ASKPASS");
  if (!own.isEmpty()) return own;
  return QString::fromStdString((bundleLocation() / "Contents/Helpers/askpass").string());
}

AdminScriptError cancelled() {
  return {kAdminScriptCancelled, "User canceled."};
}

std::optional<AdminScriptError> result(const Outcome& outcome) {
  if (outcome.status == 0) return std::nullopt;
  return AdminScriptError{outcome.status, outcome.standardError};
}

/// The askpass program's exit status alone decides; the script runs as this user.
std::optional<AdminScriptError> runBelow(const std::filesystem::path& root,
                                         const AdminScript& script) {
  auto environment = QProcessEnvironment::systemEnvironment();
  const Outcome asked = run(askpassProgram(), {QString::fromStdString(script.prompt)}, environment);
  if (asked.status != 0) return cancelled();
  environment.insert("INSTALL_ROOT", QString::fromStdString(root.string()));
  return result(run("/bin/sh", {QString::fromStdString(script.path)}, environment));
}

std::optional<AdminScriptError> runWithSudo(const AdminScript& script) {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("SUDO_ASKPASS", askpassProgram());
  environment.insert("LC_ALL", "C.UTF-8");  // its messages are read below
  // In a prompt of sudo a percent sign introduces an escape.
  const QString prompt = QString::fromStdString(script.prompt).replace('%', "%%");
  const Outcome outcome =
      run("sudo", {"-A", "-k", "-p", prompt, "--", "/bin/sh", QString::fromStdString(script.path)},
          environment);
  if (outcome.status != 0 && outcome.standardError.find(kNoPassword) != std::string::npos)
    return cancelled();
  return result(outcome);
}

}  // namespace

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  const auto script = parseAdminScriptSource(source);
  if (!script) return adminScriptSyntaxError(source);

  Execution::instance().begin();
  std::optional<AdminScriptError> error;
  if (const auto root = linux_::fileRoot())
    error = runBelow(*root, *script);
  else if (::geteuid() == 0)
    error = result(run("/bin/sh", {QString::fromStdString(script->path)},
                       QProcessEnvironment::systemEnvironment()));
  else
    error = runWithSudo(*script);
  Execution::instance().end();
  return error;
}

void interruptAdminScript() {
  Execution::instance().interrupt();
}

}  // namespace platform
