// The screens, drawn off screen over the platform in memory.

#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include "tests/animation_clock.h"
#include "tests/view_test.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"

namespace {

using Case = InstallationStatus::Case;

class UiTest : public ViewTest {
 protected:
  void open() {
    window.reset();
    model = std::make_unique<InstallerModel>(view);
    window = std::make_unique<QQuickView>();
    window->setResizeMode(QQuickView::SizeRootObjectToView);
    window->setInitialProperties({{"model", QVariant::fromValue(model.get())}});
    window->setSource(contentBodyUrl());
    window->resize(500, 450);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    settle();
  }

  void settle() {
    platform.drain();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    window->grabWindow();  // a frame, for which everything is laid out
  }
  void become(InstallationStatus status, bool isInstalling = false) {
    view->isInstalling = isInstalling;
    view->installationStatus = std::move(status);
    settle();
  }

  QQuickItem* item(const std::string& name) {
    for (auto* each : window->rootObject()->findChildren<QQuickItem*>(QString::fromStdString(name)))
      if (each->isVisible()) return each;
    return nullptr;
  }
  QRectF place(const std::string& name) {
    QQuickItem* const found = item(name);
    return found ? found->mapRectToScene(found->boundingRect()) : QRectF();
  }
  std::string text(const std::string& name) {
    return item(name)->property("text").toString().toStdString();
  }

  void click(QPointF point) {
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, point.toPoint());
    settle();
  }
  void press(const std::string& button) { click(place(button).center()); }
  void key(Qt::Key key) {
    QTest::keyClick(window.get(), key);
    settle();
  }
  std::string focused() { return window->activeFocusItem()->objectName().toStdString(); }

  std::unique_ptr<InstallerModel> model;
  std::unique_ptr<QQuickView> window;
};

TEST_F(UiTest, NamesComeFromTheBundle) {
  open();
  EXPECT_EQ(text("version"), "-");
  EXPECT_EQ(model->appDisplayName(), "澄枫输入法");
  for (const std::string& name : {std::string(), std::string(60, 'M')}) {
    platform.info = {{"CFBundleDisplayName", name},
                     {"CFBundleName", "Maple Pinyin Input"},
                     {"CFBundleShortVersionString", "2.4.0"}};
    become(Case::notStarted);
    open();
    EXPECT_EQ(text("version"), "2.4.0");
    EXPECT_EQ(model->appDisplayName(), name.empty() ? "Maple Pinyin Input" : name.c_str());
    become(Case::waitingEnable);
    EXPECT_EQ(item("guideText")->property("truncated").toBool(), !name.empty());
  }
}

TEST_F(UiTest, ProgressIsTruncatedAndMovesSmoothly) {
  AnimationClock clock;
  view->installProgress = 0.9;  // an earlier run's
  view->installationStatus = InstallationStatus::failed("未检测到已安装的输入法");
  open();
  press("retryButton");
  EXPECT_EQ(place("progressFill").width(), 0);
  view->installProgress = 0.29;
  settle();
  EXPECT_EQ(text("progressText"), "正在安装 28%");
  for (const double share : {0.2, 0.5, 1.0}) {
    clock.moveTo(250 * share);
    EXPECT_NEAR(place("progressFill").width(), 388 * 0.29 * share, 0.01);
  }
  view->installProgress.set(1.0, LinearAnimation{platform::Seconds(0.3)});
  settle();
  EXPECT_EQ(model->progressAnimation(), 300);
}

TEST_F(UiTest, ProgressTakesThePlaceOfTheButtonsOfTheMainScreen) {
  open();
  for (const auto& [status, button, keepsTrigger] :
       {std::tuple{InstallationStatus(Case::notStarted), "installButton", false},
        std::tuple{InstallationStatus(Case::installing), "installButton", false},
        std::tuple{InstallationStatus(Case::needAdmin), "retryAuthorisationButton", true},
        std::tuple{InstallationStatus::failed("安装失败"), "retryButton", false}}) {
    become(status, /*isInstalling=*/true);
    EXPECT_TRUE(item("progressBar") && !item(button)) << button;
    become(status);
    EXPECT_FALSE(item("progressBar")) << button;
    view->didTriggerActivation = true;
    platform.workerBlocks.clear();
    press(button);
    EXPECT_EQ(view->didTriggerActivation, keepsTrigger) << button;
    EXPECT_TRUE(view->isInstalling && platform.workerBlocks.size() == 1);
  }
  become(InstallationStatus::failed("安装失败"));
  for (const Qt::Key each : {Qt::Key_Tab, Qt::Key_Return}) key(each);  // 打开键盘设置
  EXPECT_EQ(calls({"open"}).size(), 1U);
}

TEST_F(UiTest, WaitingScreenAttemptsAndPollsWhileShown) {
  platform.addInputMethod();
  open();
  become(Case::waitingEnable, /*isInstalling=*/true);
  EXPECT_FALSE(item("progressBar"));
  EXPECT_EQ(platform.liveTimers(), 1U);
  EXPECT_EQ(calls({"enable"}).size(), 1U);
  platform.takeJournal();
  become(Case::success);
  EXPECT_EQ(platform.liveTimers(), 0U);
  EXPECT_EQ(calls({"activate"}), Lines{});  // success does not take the focus
}

TEST_F(UiTest, OverlayIsAboveEverything) {
  open();
  become(Case::waitingEnable);
  EXPECT_FALSE(item("focusRing"));
  key(Qt::Key_Tab);
  EXPECT_TRUE(item("focusRing"));
  view->showExitEnableConfirm = true;
  settle();
  platform.takeJournal();
  for (const Qt::Key each : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) key(each);
  click({250, place("goEnableButton").bottom() - 2});
  click({2, 2});
  EXPECT_TRUE(item("exitConfirmOverlay"));
  EXPECT_EQ(platform.journal, Lines{});
  for (const char* expected :
       {"exitButton", "exitGoEnableButton", "exitButton", "exitGoEnableButton"}) {
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), expected);
  }
  key(Qt::Key_Return);
  EXPECT_FALSE(item("exitConfirmOverlay"));
  EXPECT_EQ(focused(), "goEnableButton");
}

TEST_F(UiTest, SecondClickPressesNothingNew) {
  const auto openedByDoubleClick = [this](const char* button) {
    platform.takeJournal();
    const QPointF at = place(button).center();
    click(at);
    for (const auto type :
         {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
      const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
      QMouseEvent event(type, at, window->mapToGlobal(at), Qt::LeftButton, held, {});
      QCoreApplication::sendEvent(window.get(), &event);
    }
    settle();
    platform.advance(1);
    return calls({"open"}).size();
  };
  open();
  become(Case::waitingEnable);
  EXPECT_EQ(openedByDoubleClick("goEnableButton"), 2U);
  // Under each button of the overlay lies the one below.
  for (const char* button : {"exitGoEnableButton", "exitButton"}) {
    view->showExitEnableConfirm = true;
    settle();
    EXPECT_LE(openedByDoubleClick(button), 1U) << button;
    EXPECT_FALSE(view->showExitEnableConfirm) << button;
  }
  EXPECT_EQ(calls({"terminate"}).size(), 1U);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  const auto application = startToolkit(argv, "");
  return RUN_ALL_TESTS();
}
