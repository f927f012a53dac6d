#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/installed_files.h"
#include "inputsource/removal.h"
#include "installer/authorisation.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/common/admin_script_source.h"
#include "platform/file_root.h"
#include "platform/log_file.h"
#include "platform/program.h"

namespace {

namespace fs = std::filesystem;

/// Written by the uninstallation script, and by this program.
constexpr const char* kScriptLogPath = "/tmp/tessal_uninstaller.log";
constexpr const char* kUninstallLogPath = "/tmp/tessal_uninstaller_ui.log";

bool isThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

/// Where the input method keeps the user's dictionary and settings.
std::vector<fs::path> userFiles() {
  const fs::path library = platform::userLibrary();
  const std::string identifier(TessalInstaller::baseBundleID);
  return {library / "Application Support" / "Orvane", library / "Caches" / identifier,
          library / "Preferences" / (identifier + ".plist"),
          library / "Preferences" / (identifier + ".settings.plist")};
}

/// One removal. Lives on the main queue.
class Uninstallation {
 public:
  Uninstallation(EventOutput& output, const UninstallOptions& options)
      : output_(output), options_(options) {}

  void start() {
    platform::onTerminationRequest([this] {
      // How the script ends now decides the result.
      isInterrupted_ = true;
      if (!platform::interruptAdminScript()) fail("移除被中断；密码窗口或卸载脚本还在，无法中止");
    });
    platform::emptyLogFile(platform::onDisk(kUninstallLogPath));
    const auto script = platform::bundleResource("uninstall", "sh");
    if (!script) return fail("找不到卸载脚本 uninstall.sh");
    output_.progress(0.0);
    // The script takes the bundles away, and the service may then know their
    // sources no more. They go only after it: a refused prompt changes nothing.
    sources_ = ownSources();
    bundleID_ = entryBundleID();
    if (!isAnythingOnDisk()) {
      say("没有程序包可移除");
      return cleanUp();
    }
    output_.phase("script");
    platform::emptyLogFile(platform::onDisk(kScriptLogPath));
    const std::string source =
        platform::composeAdminScriptSource({script->string(), adminPrompt()});
    platform::asyncOnWorker([this, source] {
      const auto error = platform::executeAdminScript(source);
      platform::asyncOnMain([this, error] { scriptEnded(error); });
    });
  }

 private:
  /// A bundle, or what a killed run has left of one.
  static bool isAnythingOnDisk() {
    const auto bundles = installedBundles();
    return !leftovers().empty() ||
           std::any_of(bundles.begin(), bundles.end(),
                       [](const auto& bundle) { return isThere(platform::onDisk(bundle)); });
  }

  void scriptEnded(const std::optional<platform::AdminScriptError>& error) {
    if (error && isAuthorisationRefused(*error)) {
      output_.complain("未获得管理员授权，没有移除任何东西");
      return platform::endMainLoop(kRefused);
    }
    if (error) {
      log("卸载脚本失败: " + error->message.value_or(""));
      return fail((isInterrupted_ ? "移除被中断：" : "移除失败：") + error->message.value_or(""));
    }
    output_.progress(0.8);
    for (const fs::path& bundle : installedBundles())
      if (isThere(platform::onDisk(bundle)))
        say("保留了 " + platform::onDisk(bundle).string() + "：它不是这个安装器装的");
    if (TessalInstaller().isInstalled()) return fail("输入法没有移除");
    say("已移除程序包");
    cleanUp();
  }

  void cleanUp() {
    output_.phase("cleanup");
    const TessalInstaller installer;
    const auto disabled = deselectAndDisable(sources_);
    if (installer.isBaseEnabledBestEffort() || !installer.enabledModes().empty())
      reportRemaining("还有输入源没有停用");
    else
      say("已停用 " + std::to_string(disabled) + " 个输入源");
    const auto removed = removeOrvaneFromHIToolboxDefaults(bundleID_);
    const auto lists = listedEntries(kDefaultMode);
    if (removed &&
        std::all_of(lists.begin(), lists.end(), [](const auto& list) { return list.own == 0; }))
      say(*removed == 0 ? "没有要清理的条目"
                        : "已从偏好列表中取出 " + std::to_string(*removed) + " 条");
    else
      reportRemaining("没有写入偏好列表，其中的条目还在");
    // As long as a source was enabled, the system may have started it anew.
    if (platform::onDisk("/") == "/")
      for (const char* process : {"Orvane", "OrvaneSettings"})
        platform::runAndWait("/usr/bin/killall", {process});
    for (const char* agent : {"TextInputMenuAgent", "TextInputSwitcher"})
      platform::runAndWait("/usr/bin/killall", {"-9", agent});
    std::error_code error;
    fs::remove(activationStamp(), error);
    fs::remove(activationStamp().parent_path(), error);  // if that was all
    for (const fs::path& file : userFiles()) purgeOrName(file);
    if (!isComplete_) return fail("移除没有完成");
    output_.progress(1.0);
    output_.say("移除完成");
    platform::endMainLoop(kSuccess);
  }

  /// Removes a file of the user if that is wanted, else says where it is.
  void purgeOrName(const fs::path& file) {
    if (!isThere(file)) return;
    if (!options_.purge)
      return say("保留了用户词库和设置：" + file.string() + "（uninstall --purge 会删除）");
    std::error_code error;
    // What is behind a link is somebody else's.
    for (fs::path folder = file.parent_path(); folder != platform::userLibrary().parent_path();
         folder = folder.parent_path())
      if (fs::is_symlink(folder, error))
        return reportRemaining("没有删除 " + file.string() + "：" + folder.string() + " 是链接");
    // The preferences service of macOS would write a mere file anew.
    if (file.extension() == ".plist")
      platform::runAndWait("/usr/bin/defaults", {"delete", file.stem().string()});
    if (fs::remove_all(file, error); error)
      return reportRemaining("无法删除 " + file.string() + "：" + error.message());
    say("已删除 " + file.string());
  }

  /// Something stays that should have gone.
  void reportRemaining(const std::string& line) {
    log(line);
    output_.complain(line);
    isComplete_ = false;
  }

  void fail(const std::string& message) {
    output_.complain(message);
    output_.complain("日志：" + platform::onDisk(kScriptLogPath).string());
    platform::endMainLoop(kFailed);
  }

  void say(const std::string& line) {
    log(line);
    output_.say(line);
  }

  static void log(const std::string& line) {
    platform::appendToLogFile(platform::onDisk(kUninstallLogPath), line + "\n");
  }

  EventOutput& output_;
  UninstallOptions options_;
  std::vector<platform::InputSource> sources_;
  std::string bundleID_;
  bool isInterrupted_ = false;
  bool isComplete_ = true;
};

bool isConfirmed() {
  std::cout << "将移除「澄枫输入法」和随它安装的应用，并停用它的输入源。继续吗？[y/N] "
            << std::flush;
  std::string answer;
  // Only somebody at a terminal ends the line.
  if (!std::getline(std::cin, answer) || ::isatty(STDIN_FILENO) == 0) std::cout << std::endl;
  answer.erase(answer.find_last_not_of(" \t\r") + 1);
  const auto yes = {"y", "Y", "yes", "Yes", "YES", "是"};
  return std::find(yes.begin(), yes.end(), answer) != yes.end();
}

}  // namespace

int runUninstall(EventOutput& output, const UninstallOptions& options) {
  int status = kRefused;
  if (options.yes || isConfirmed()) {
    Uninstallation uninstallation(output, options);
    platform::asyncOnMain([&] { uninstallation.start(); });
    status = platform::runMainLoop();
  } else {
    output.say("已取消，没有移除任何东西");
  }
  output.result(status);
  return status;
}
