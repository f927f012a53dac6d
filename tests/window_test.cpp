// The one-time configuration of the window and its close question.

#include "tests/view_test.h"

namespace {

using WindowTest = ViewTest;

TEST_F(WindowTest, ContentIsThousandByNineHundredPixelsAroundTheOldCentre) {
  const platform::Rect large{300 - 500, 265 - 465, 1000, 930};
  const platform::Rect small{300 - 250, 265 - 240, 500, 480};
  for (const auto& [scale, frame, size] :
       {std::tuple{0.5, large, "1000x900"}, {1.0, large, "1000x900"}, {2.0, small, "500x450"}}) {
    const auto fresh = ContentView::create();
    platform.window = {};
    platform.window.scale = scale;
    platform::HostWindow window(nullptr);
    fresh->configureWindow(nullptr);
    EXPECT_FALSE(fresh->windowConfigured);
    fresh->configureWindow(&window);
    EXPECT_TRUE(fresh->windowConfigured);
    EXPECT_EQ(platform.window.frame, frame) << scale;
    EXPECT_EQ(platform.takeJournal(),
              (Lines{"delegate", "set frame", std::string("fix size ") + size, "hide title",
                     "remove size controls"}));
    fresh->configureWindow(&window);
    EXPECT_TRUE(platform.journal.empty());
  }
}

TEST_F(WindowTest, ClosingIsRefusedExactlyWhileWaiting) {
  using Case = InstallationStatus::Case;
  view->installationStatus = Case::waitingEnable;
  platform::HostWindow window(nullptr);
  view->configureWindow(&window);
  for (const Case value : {Case::waitingEnable, Case::success, Case::waitingEnable, Case::needAdmin,
                           Case::installing}) {
    view->installationStatus = value;
    view->showExitEnableConfirm = false;
    platform.drain();
    EXPECT_EQ(platform.window.shouldClose(), value != Case::waitingEnable);
    EXPECT_EQ(view->showExitEnableConfirm, value == Case::waitingEnable);
  }
  view.reset();
  EXPECT_TRUE(platform.window.shouldClose());
}

}  // namespace
