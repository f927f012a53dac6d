// A view on the platform in memory, and what several tests ask of it.

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "installer/content_view.h"
#include "tests/platform/test_platform.h"

using InstallationStatus = ContentView::InstallationStatus;

class ViewTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  test::Platform platform;
  std::shared_ptr<ContentView> view = ContentView::create();

  ~ViewTest() override { view.reset(); }

  InstallationStatus::Case status() const { return view->installationStatus->value(); }
  std::string logText() const { return view->logText; }
  std::string uiLog() const { return platform.readFile("/tmp/tessal_installer_ui.log"); }

  /// The calls made so far that begin with one of these words.
  Lines calls(const std::vector<std::string>& words) {
    Lines found;
    for (const std::string& line : platform.journal)
      for (const std::string& word : words)
        if (line.starts_with(word)) found.push_back(line);
    return found;
  }

  /// Presses "安装" with a script that succeeds and installs the bundle.
  void runScript() {
    platform.duringAdminScript = [this] { platform.putInstalledBundle(); };
    view->userPressedInstall();
    platform.runWorker();
  }

  void runFreshInstallUpToWaiting() {
    platform.addInputMethod();
    runScript();
    platform.advance(0.25);
    ASSERT_EQ(status(), InstallationStatus::waitingEnable);
  }
};
