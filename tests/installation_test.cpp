// The state, the logs, the privileged run and the progress from its log.

#include <sys/stat.h>
#include <unistd.h>

#include "platform/log_file.h"
#include "tests/identifiers.h"
#include "tests/view_test.h"

namespace {

using InstallationTest = ViewTest;
constexpr const char* kExecute =
    "execute do shell script \"/bin/sh \" & quoted form of POSIX path of "
    "\"/Volumes/Orvane/Orvane Installer.app/Contents/Resources/install.sh\" with administrator "
    "privileges with prompt \"Orvane Installer 想要进行更改\"";

TEST_F(InstallationTest, EveryWayOfWritingReachesObserversOnceTheOperationIsOver) {
  std::vector<std::string> seen;
  const auto log =
      view->logText.observe([&](const std::string& text, auto) { seen.push_back("log " + text); });
  const auto progress = view->installProgress.observe([&](double value, auto animation) {
    seen.push_back(std::to_string(value) +
                   (animation ? " over " + std::to_string(animation->duration.count()) : ""));
  });
  auto status = view->installationStatus.observe(
      [&](const auto& value, auto) { seen.push_back("status " + value.message()); });

  view->handleInstallLogChunk("unzip package\n");
  view->installationStatus = InstallationStatus::failed("安装失败");
  EXPECT_TRUE(seen.empty());
  platform.drain();
  EXPECT_EQ(seen, (Lines{"0.150000 over 0.250000", "log unzip package\n", "status 安装失败"}));

  seen.clear();
  status.reset();
  view->installationStatus = InstallationStatus::success;
  view->installProgress = 0.5;
  view->installProgress.set(1.0, LinearAnimation{platform::Seconds(0.3)});
  platform.drain();
  EXPECT_EQ(seen, (Lines{"1.000000 over 0.300000"}));
}

TEST_F(InstallationTest, UILogKeepsTextUnchangedAndMemoryKeepsEverything) {
  platform.putFile("/tmp/tessal_installer_ui.log", "earlier ");
  view->appendUILog("一\r\n");
  view->appendUILog("\xff broken");
  view->appendUILog("");
  EXPECT_EQ(uiLog(), "earlier 一\r\n");
  EXPECT_EQ(logText(), "一\r\n\xff broken");
}

TEST_F(InstallationTest, FirstMarkerInTableOrderDecides) {
  const std::vector<std::pair<std::string, double>> markers = {
      {"Cogwen installed successfully\n", 0.92},
      {"move Cogwen to Applications\n", 0.88},
      {"install Cogwen\n", 0.84},
      {"Sondrel installed successfully\n", 0.8},
      {"move Sondrel to Applications\n", 0.7},
      {"install Sondrel\n", 0.6},
      {"permission change successful\n", 0.5},
      {"move package to install path\n", 0.4},
      {"move app bundle to destination directory\n", 0.4},
      {"kill Orvane\n", 0.25},
      {"unzip package\n", 0.15},
  };
  // Each decides alone, and over those before it, which come after it in the table.
  std::string piece = "finish\n";
  std::string all;
  for (const auto& [phrase, progress] : markers) {
    piece += phrase;
    for (const std::string& text : {phrase, piece}) {
      view->installProgress = 0.0;
      view->handleInstallLogChunk(text);
      EXPECT_EQ(view->installProgress.get(), progress) << text;
      all += text;
    }
  }
  view->handleInstallLogChunk("Kill orvane\n");
  EXPECT_EQ(view->installProgress.get(), 0.15);
  EXPECT_EQ(uiLog(), all + "Kill orvane\n");
  EXPECT_FALSE(view->didTriggerActivation);
}

TEST_F(InstallationTest, FinishStartsActivationOnceAndIsLoggedAfterIt) {
  for (const double before : {0.5, 0.97}) {
    view->userPressedInstall();
    view->installProgress = before;
    view->handleInstallLogChunk("finish");  // nothing is installed
    EXPECT_EQ(view->installProgress.get(), std::max(before, 0.94));
  }
  view->logText = std::string();
  view->userPressedInstall();
  platform.putFile(kBundle, "anything counts");
  view->handleInstallLogChunk("finished\n");
  EXPECT_EQ(view->installProgress.get(), 1.0);  // sent there by the fresh path
  EXPECT_TRUE(logText().starts_with("开始注册并激活输入法...\n启用路径："));
  EXPECT_TRUE(logText().ends_with("已调用 LSRegisterURL\nfinished\n"));
  view->handleInstallLogChunk("finish");
  platform.runWorker();
  EXPECT_TRUE(logText().ends_with("finished\nfinish"));
}

TEST_F(InstallationTest, RunEmptiesLogsFollowsTheInstallLogAndRunsTheScript) {
  platform.putFile("/tmp/tessal_installer_ui.log", "old");
  platform.putFile("/tmp/tessal_installer.log", "finish");
  view->appendUILog("kept ");
  view->installPathExistedBeforeStart = true;
  platform.duringLaunch = [this] {
    EXPECT_EQ(platform.readFile("/tmp/tessal_installer.log"), "")
        << "emptied before it is followed";
  };
  view->userPressedInstall();
  EXPECT_FALSE(view->installPathExistedBeforeStart);
  EXPECT_TRUE(view->isInstalling);
  EXPECT_EQ(status(), InstallationStatus::installing);

  // Pieces come off the main thread and are handled on it, in order.
  platform.childOutput.call("kill Orvane\n");
  platform.childOutput.call("split \xe5\xae");
  platform.childOutput.call("more\n");
  EXPECT_EQ(view->installProgress.get(), 0.0);
  platform.drain();
  EXPECT_EQ(uiLog(), "kill Orvane\nmore\n");
  EXPECT_EQ(logText(), "kept kill Orvane\nmore\n");

  platform.runWorker();
  EXPECT_EQ(platform.journal, (Lines{"launch /usr/bin/tail -n +1 -F " +
                                         (platform.root / "tmp/tessal_installer.log").string(),
                                     kExecute, "terminate"}));
  EXPECT_EQ(status(), InstallationStatus::Case::failed);
  EXPECT_EQ(view->installationStatus->message(), "未检测到已安装的输入法");
  EXPECT_EQ(uiLog(), "kill Orvane\nmore\n开始注册并激活输入法...\n");
  EXPECT_FALSE(view->isInstalling);
}

TEST_F(InstallationTest, MissingScriptAndMissingFollower) {
  platform.hasInstallScript = false;
  view->userPressedInstall();
  EXPECT_EQ(view->installationStatus->message(), "找不到安装脚本 install.sh");
  EXPECT_FALSE(view->isInstalling);
  EXPECT_EQ(uiLog(), "未找到 install.sh，请将其加入 Copy Bundle Resources\n");
  EXPECT_TRUE(platform.journal.empty());
  EXPECT_TRUE(platform.workerBlocks.empty());

  platform.hasInstallScript = true;
  platform.launchProblem = "no such tool";
  view->userPressedInstall();
  EXPECT_EQ(uiLog(), "无法启动日志跟踪: no such tool\n");
  platform.runWorker();
  EXPECT_EQ(calls({"terminate"}), Lines{});
  EXPECT_EQ(calls({"execute"}), Lines{kExecute});
}

TEST_F(InstallationTest, OnlyAnOwnFileWithOneNameIsALog) {
  const auto log = platform.root / "tmp/log";
  const auto kept = platform.root / "tmp/private";
  platform.putFile("/tmp/private", "kept");
  std::vector<std::function<void()>> plants = {
      [&] { std::filesystem::create_symlink(kept, log); },
      [&] { std::filesystem::create_hard_link(kept, log); }, [&] { ::mkfifo(log.c_str(), 0600); }};
  if (::geteuid() == 0)
    plants.emplace_back([&] {
      platform.putFile("/tmp/log", "kept");
      EXPECT_EQ(::chown(log.c_str(), 54321, -1), 0);
    });
  for (const auto& plant : plants) {
    plant();
    platform::emptyLogFile(log);
    platform::appendToLogFile(log, "more");
    EXPECT_FALSE(platform::isOwnLogFile(log) || platform::readEndOfLogFile(log));
    EXPECT_TRUE(!std::filesystem::is_regular_file(log) || platform.readFile("/tmp/log") == "kept");
    std::filesystem::remove(log);
  }
}

TEST_F(InstallationTest, LogOfSomebodyElseIsNotFollowed) {
  const auto log = platform.root / "tmp/tessal_installer.log";
  platform.duringLaunch = [&] {
    std::filesystem::remove(log);
    std::filesystem::create_symlink("private", log);
  };
  for (std::size_t runs = 1; runs <= 2; ++runs) {  // in the second one it is there from the start
    view->userPressedInstall();
    EXPECT_EQ(platform.runningChildren, 0);
    EXPECT_TRUE(uiLog().starts_with("无法启动日志跟踪: " + log.string() + ": "));
    platform.runWorker();
    EXPECT_EQ(calls({"execute"}).size(), runs);
  }
  EXPECT_EQ(calls({"launch"}).size(), 1U);
}

TEST_F(InstallationTest, RefusalAndFailureKeepTheRunOnScreen) {
  const auto endWith = [this](std::optional<int> number, std::optional<std::string> message) {
    platform.adminScriptError = platform::AdminScriptError{number, std::move(message)};
    view->userPressedInstall();
    platform.childOutput.call("unzip package\n");
    platform.runWorker();
    EXPECT_TRUE(view->isInstalling);
    EXPECT_EQ(view->installProgress.get(), 0.15);
    return status();
  };
  for (const char* message : {"x USER Canceled.", "操作被用户取消了", "Not Authorized to do this"})
    EXPECT_EQ(endWith(1, message), InstallationStatus::needAdmin) << message;
  EXPECT_EQ(endWith(-128, std::nullopt), InstallationStatus::needAdmin);
  EXPECT_EQ(uiLog(), "unzip package\n");

  EXPECT_EQ(endWith(3, "disk full"), InstallationStatus::Case::failed);
  EXPECT_EQ(view->installationStatus->message(), "安装失败");
  EXPECT_EQ(uiLog(), "unzip package\n管理员授权失败: disk full\n");
  EXPECT_EQ(endWith(std::nullopt, std::nullopt), InstallationStatus::Case::failed);
}

TEST_F(InstallationTest, NewRunResetsItsOwnFieldsOnly) {
  runFreshInstallUpToWaiting();
  view->startEnablePolling();
  view->showExitEnableConfirm = true;
  view->didLaunchSettingsBootstrap = true;
  view->lastEnabledNotificationAt = platform::now();
  const std::string log = logText();
  view->userPressedRetryAuthorisation();
  EXPECT_TRUE(view->isInstalling);
  EXPECT_EQ(status(), InstallationStatus::installing);
  EXPECT_TRUE(view->lastEnabledNotificationAt->has_value());
  EXPECT_EQ(view->installProgress.get(), 0.0);
  EXPECT_FALSE(view->didAttemptFreshEnableOnce || view->showExitEnableConfirm ||
               view->didDisableAllForFreshEnable || view->didLaunchSettingsBootstrap ||
               view->shouldLaunchSettingsBootstrapOnSuccess);
  EXPECT_FALSE(view->lastEnableBaseRequestAt->has_value());
  EXPECT_EQ(platform.liveTimers(), 0U);
  EXPECT_TRUE(view->installPathExistedBeforeStart);
  EXPECT_TRUE(view->didTriggerActivation);  // this button leaves it
  EXPECT_NE(view->enableNotificationObserver.get(), nullptr);
  EXPECT_EQ(logText(), log);
}

}  // namespace
