// What follows a successful script, on the virtual clock.

#include <cstdlib>

#include "tests/identifiers.h"
#include "tests/view_test.h"

namespace {

const std::string kNotified =
    "收到输入源启用状态更新（kTISNotifyEnabledKeyboardInputSourcesChanged）\n";
const std::vector<std::string> kRestarts = {"run /usr/bin/killall -9 TextInputMenuAgent",
                                            "run /usr/bin/killall -9 TextInputSwitcher"};
const std::string kSettingsApp = "/Contents/MacOS/OrvaneSettings.app";

class ActivationTest : public ViewTest {
 protected:
  /// The user has allowed the input method.
  void allow() {
    platform.allow();
    platform.appliesSelect = true;
  }
  std::size_t handledCount() { return calls({"select"}).size(); }
  void TearDown() override { ::unsetenv("TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS"); }
};

TEST_F(ActivationTest, FreshInstallFromScriptToSettings) {
  ::setenv("TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS", "1", 1);  // not for this path
  platform.addInputMethod();
  std::string shown;
  const auto progress = view->installProgress.observe([&](double value, auto animation) {
    shown = std::to_string(value) + " over " +
            std::to_string(animation ? animation->duration.count() : 0);
  });
  runScript();
  EXPECT_EQ(shown, "1.000000 over 0.250000");
  EXPECT_EQ(calls({"observe", "register", "set", "synchronize"}),
            (Lines{"observe", "register " + kBundleOnDisk,
                   "register with Launch Services " + kBundleOnDisk + " (update)"}));
  platform.putFile(kBundle + kSettingsApp + "/x", "");
  platform.takeJournal();
  platform.advance(0.2499);
  EXPECT_EQ(status(), InstallationStatus::installing);
  EXPECT_TRUE(view->isInstalling);
  platform.advance(0.0002);
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
  EXPECT_FALSE(view->isInstalling);
  EXPECT_EQ(platform.takeJournal(),
            (Lines{"activate", "disable " + kPinyin, "disable " + kBase, "enable " + kBase}));

  view->enableWaitingViewDidAppear();
  EXPECT_TRUE(platform.journal.empty());
  allow();
  platform.notifyEnabledSourcesChanged();
  platform.advance(0.35);
  EXPECT_EQ(status(), InstallationStatus::success);
  EXPECT_EQ(platform.journal,
            (Lines{"deselect " + kPinyin, "select " + kPinyin, "stop observing", kRestarts[0],
                   kRestarts[1], "open application " + kBundleOnDisk + kSettingsApp}));
  EXPECT_EQ(
      uiLog(),
      "开始注册并激活输入法...\n启用路径：全新安装（可能弹出“允许启用”提示）\n"
      "已调用 TISRegisterInputSource\n已调用 LSRegisterURL\n"
      "已调用 TISDisableInputSource（fresh:disableAll，一次，mode=[0], base=0）\n"
      "已调用 TISEnableInputSource（fresh:enableBase=0，trigger=enter-waiting）\n" +
          kNotified +
          "已调用 TISSelectInputSource（来自通知：kTISNotifyEnabledKeyboardInputSourcesChanged"
          "，ok=true）\n已拉起设置应用（首装 bootstrap）\n");

  view->finalizeInstallSuccess(true);
  EXPECT_EQ(calls({"run", "open application"}).size(), 3U);
  platform.drain();
  EXPECT_EQ(shown, "1.000000 over 0.300000");
}

TEST_F(ActivationTest, OverwriteInstallEndsAtOnceAndSelectsNothing) {
  platform.addInputMethod();
  platform.putInstalledBundle();
  platform.allow();
  runScript();
  EXPECT_EQ(status(), InstallationStatus::success);
  EXPECT_FALSE(view->isInstalling);
  EXPECT_EQ(view->installProgress.get(), 1.0);
  EXPECT_EQ(calls({"observe", "enable", "select", "register", "run", "open application", "set"}),
            (Lines{"register " + kBundleOnDisk,
                   "register with Launch Services " + kBundleOnDisk + " (update)", kRestarts[0],
                   kRestarts[1]}));
  EXPECT_TRUE(logText().ends_with("已处理覆盖安装：跳过切换当前输入法（ok=true）\n"));

  // Registration is once per window; defaults and agents are once per run.
  for (const char* value : {"true", " 1", "1 ", "1", "1"}) {
    // As a fresh run before would have left it: it goes after the agents.
    view->registerEnabledInputSourcesChangedNotificationIfNeeded();
    platform.takeJournal();
    ::setenv("TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS", value, 1);
    runScript();
    view->postInstallActivation();  // once more in the same run
    EXPECT_EQ(calls({"register"}), Lines{});
    EXPECT_EQ(calls({"synchronize"}).size(), value == std::string("1") ? 1U : 0U) << value;
    EXPECT_EQ(calls({"run", "stop"}), (Lines{kRestarts[0], kRestarts[1], "stop observing"}));
  }
}

TEST_F(ActivationTest, SettingsAreFoundElsewhereOrSkipped) {
  view->shouldLaunchSettingsBootstrapOnSuccess = true;
  view->launchSettingsBootstrapIfNeeded();
  view->launchSettingsBootstrapIfNeeded();
  EXPECT_EQ(uiLog(), "首装 bootstrap：未找到设置应用，跳过\n");
  view->didLaunchSettingsBootstrap = false;
  platform.applications[kBase + ".settings"] = platform.root / "Elsewhere.app";
  view->launchSettingsBootstrapIfNeeded();
  EXPECT_TRUE(logText().ends_with("已拉起设置应用（首装 bootstrap，fallback）\n"));
  EXPECT_EQ(calls({"open"}), Lines{"open application Elsewhere.app"});
}

TEST_F(ActivationTest, EnableRequestsKeepSixSecondsApart) {
  runFreshInstallUpToWaiting();
  platform.takeJournal();
  platform.advance(5.9);
  view->attemptFreshEnable("user");
  EXPECT_EQ(platform.takeJournal(), Lines{"activate"});
  platform.advance(0.1);
  platform.statuses["enable"] = {-50};
  view->attemptFreshEnable("user");
  EXPECT_EQ(platform.takeJournal(), (Lines{"activate", "enable " + kBase}));
  EXPECT_TRUE(
      logText().ends_with("已调用 TISEnableInputSource（fresh:enableBase=-50，trigger=user）\n"));
  view->attemptFreshEnable("user");  // a failing request counts too
  EXPECT_EQ(platform.takeJournal(), Lines{"activate"});

  platform.allow();
  platform.advance(10);
  view->attemptFreshEnable("user");
  EXPECT_EQ(platform.takeJournal(), Lines{"activate"});
  for (const auto over : {InstallationStatus::Case::success, InstallationStatus::Case::failed}) {
    view->installationStatus = over;
    view->attemptFreshEnable("user");
    view->handleEnabledKeyboardInputSourcesChanged("x");
    EXPECT_TRUE(platform.journal.empty() && !view->lastEnabledNotificationAt->has_value());
  }
}

TEST_F(ActivationTest, AttemptWithoutBaseSourceIsNotThrottled) {
  view->attemptFreshEnable("auto");
  view->attemptFreshEnable("user");
  EXPECT_EQ(uiLog(),
            "已调用 TISRegisterInputSource\n已调用 LSRegisterURL\n"
            "已调用 TISDisableInputSource（fresh:disableAll，一次，mode=[], base=nil）\n"
            "未找到 base 输入源，无法调用 TISEnableInputSource（trigger=auto）\n"
            "未找到 base 输入源，无法调用 TISEnableInputSource（trigger=user）\n");
  // Nothing is installed, so Launch Services was not asked.
  EXPECT_EQ(calls({"register"}), Lines{"register " + kBundleOnDisk});
}

TEST_F(ActivationTest, BurstOfNotificationsIsHandledOnce) {
  runFreshInstallUpToWaiting();
  view->registerEnabledInputSourcesChangedNotificationIfNeeded();
  EXPECT_EQ(calls({"observe"}).size(), 1U);
  const std::size_t logged = view->logText->size();
  for (int i = 0; i < 3; ++i) {
    platform.notifyEnabledSourcesChanged();
    platform.advance(0.1);
  }
  EXPECT_EQ(view->logText->substr(logged), kNotified + kNotified + kNotified);
  platform.advance(0.2499);
  EXPECT_EQ(handledCount(), 0U);
  platform.statuses["select"] = {-1, -1};
  platform.advance(0.0002);
  EXPECT_EQ(handledCount(), 2U);
  EXPECT_EQ(calls({"enable " + kPinyin}).size(), 1U);
  EXPECT_TRUE(logText().ends_with("，ok=false）\n"));
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
}

TEST_F(ActivationTest, PollStandsBackAfterNotificationAndStopsWithTheScreen) {
  runFreshInstallUpToWaiting();
  view->enableWaitingViewDidAppear();
  view->startEnablePolling();
  EXPECT_EQ(platform.liveTimers(), 1U);
  platform.advance(1.6);
  view->handleEnabledKeyboardInputSourcesChanged("x");  // the ticks at 3.0 and 4.5 s wait
  allow();
  platform.advance(2.9);
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
  platform.statuses["select"] = {-1, -1, -1, -1};
  view->handleEnabledKeyboardInputSourcesChanged("x");  // until 7.5 s, whose tick selects in vain
  platform.advance(3.0);
  EXPECT_EQ(calls({"select"}).size(), 5U);
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
  platform.advance(1.5);
  EXPECT_EQ(status(), InstallationStatus::success);
  EXPECT_EQ(platform.liveTimers(), 1U);
  view->enableWaitingViewDidDisappear();
  EXPECT_EQ(platform.liveTimers(), 0U);
}

TEST_F(ActivationTest, PollFindsSelectionMadeElsewhereWithoutSelecting) {
  platform.putInstalledBundle();  // disabled: the install is fresh, but not the first
  runFreshInstallUpToWaiting();
  view->startEnablePolling();
  const std::string log = logText();
  platform.advance(1.5);
  EXPECT_EQ(handledCount(), 0U);  // base not enabled: nothing to select
  platform.current = platform.mode;
  view->installationStatus = InstallationStatus::needAdmin;
  platform.advance(1.5);
  EXPECT_EQ(status(), InstallationStatus::needAdmin);
  view->installationStatus = InstallationStatus::waitingEnable;
  platform.advance(1.4999);
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
  platform.advance(0.0002);
  EXPECT_EQ(status(), InstallationStatus::success);
  EXPECT_EQ(handledCount(), 0U);
  EXPECT_EQ(logText(), log) << "a poll logs nothing";
}

TEST_F(ActivationTest, EarlyFinalisationIsOvertakenByTheDelayedBlock) {
  platform.addInputMethod();
  runScript();
  platform.current = platform.mode;
  view->handleEnabledKeyboardInputSourcesChanged("x");
  EXPECT_EQ(status(), InstallationStatus::success);
  platform.advance(0.25);
  view->enableWaitingViewDidAppear();
  platform.advance(2.7);  // the tick at 1.75 s stands back
  EXPECT_EQ(status(), InstallationStatus::waitingEnable);
  platform.advance(0.35);
  EXPECT_EQ(status(), InstallationStatus::success);
}

TEST_F(ActivationTest, AutoAttemptIsMadeOnlyIfNoneWas) {
  platform.addInputMethod();
  view->installationStatus = InstallationStatus::waitingEnable;
  view->handleEnabledKeyboardInputSourcesChanged("x");
  EXPECT_EQ(logText(),
            "已调用 TISRegisterInputSource（来自通知）\n已调用 LSRegisterURL（来自通知）\n"
            "已调用 TISSelectInputSource（来自通知：x，ok=true）\n");
  platform.statuses["disable"] = {-8, -9};
  view->enableWaitingViewDidAppear();
  view->enableWaitingViewDidDisappear();
  platform.advance(7);
  view->enableWaitingViewDidAppear();
  EXPECT_EQ(calls({"enable"}).size(), 1U);
  EXPECT_TRUE(logText().ends_with(
      "mode=[-8], base=-9）\n已调用 TISEnableInputSource（fresh:enableBase=0，trigger=auto）\n"));
  EXPECT_EQ(platform.liveTimers(), 1U);
}

TEST_F(ActivationTest, GoEnableOpensSettingsAfterTheRequest) {
  const std::string first = "x-apple.systempreferences:com.apple.preference.keyboard?InputSources";
  const std::string second = "x-apple.systempreferences:com.apple.Keyboard-Settings.extension";
  const std::string opening =
      "openKeyboardSettings(): opening System Settings → Keyboard → Input Sources (may show the "
      "Add Input Source sheet)\n";
  view->showExitEnableConfirm = true;
  view->userPressedGoEnable();
  EXPECT_FALSE(view->showExitEnableConfirm);
  EXPECT_EQ(platform.journal.front(), "activate");
  platform.advance(0.3499);
  EXPECT_EQ(calls({"open"}), Lines{});
  platform.advance(0.0002);
  EXPECT_EQ(calls({"open"}), Lines{"open " + first});
  EXPECT_TRUE(logText().ends_with("（trigger=user）\n" + opening + "openKeyboardSettings(): try " +
                                  first + "\nopenKeyboardSettings(): opened " + first + "\n"));

  platform.refusedUrls = {first, second};
  platform.takeJournal();
  view->openKeyboardSettings();
  EXPECT_EQ(platform.journal,
            (Lines{"open " + first, "open " + second,
                   "open file:///System/Library/PreferencePanes/Keyboard.prefPane"}));
  EXPECT_TRUE(logText().ends_with(opening + "openKeyboardSettings(): try " + first +
                                  "\nopenKeyboardSettings(): try " + second +
                                  "\nopenKeyboardSettings(): fallback Keyboard.prefPane\n"));
}

}  // namespace
