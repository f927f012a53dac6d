// The screens, drawn off screen over the platform in memory.

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <set>

#include "tests/view_test.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"
#include "ui/window_placement.h"

namespace {

using Case = InstallationStatus::Case;
using Names = std::vector<std::string>;

class UiTest : public ViewTest {
 protected:
  void open(QSize size = {500, 450}) {
    window.reset();
    model = std::make_unique<InstallerModel>(view);
    window = std::make_unique<QQuickView>();
    window->setResizeMode(QQuickView::SizeRootObjectToView);
    window->setInitialProperties({{"model", QVariant::fromValue(model.get())}});
    window->setSource(contentBodyUrl());
    window->resize(size);
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

  std::vector<QQuickItem*> items(QQuickItem* below) {
    if (!below->isVisible()) return {};
    std::vector<QQuickItem*> found{below};
    for (QQuickItem* child : below->childItems())
      for (QQuickItem* item : items(child)) found.push_back(item);
    return found;
  }
  QQuickItem* item(const std::string& name) {
    for (QQuickItem* each : items(window->rootObject()))
      if (each->objectName().toStdString() == name) return each;
    return nullptr;
  }
  QRectF place(const std::string& name) {
    QQuickItem* const found = item(name);
    return found ? found->mapRectToScene(found->boundingRect()) : QRectF();
  }
  /// Without the scale at which it is drawn.
  QSizeF size(const std::string& name) { return item(name)->size(); }
  std::string text(const std::string& name) {
    return item(name)->property("text").toString().toStdString();
  }

  QImage picture(const QRectF& place) {
    const double ratio = window->devicePixelRatio();
    return window->grabWindow().copy(
        QRectF(place.topLeft() * ratio, place.size() * ratio).toRect());
  }
  /// Around the box there is nothing but the window, and along its edge nothing but
  /// its own colour.
  void expectFlatEdge(const char* box, const std::string& what) {
    const QRectF at = place(box);
    const auto colours = [this](QRectF strip) {
      const QImage image = picture(strip);
      std::set<QRgb> found;
      for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) found.insert(image.pixel(x, y));
      return found;
    };
    for (const bool isInside : {false, true}) {
      const QRectF edge = isInside ? at.adjusted(1, 1, -1, -1) : at.adjusted(-8, -8, 8, 8);
      const double round = isInside ? 14 : 0;  // as far as the corners reach
      std::set<QRgb> found;
      for (const QRectF& strip :
           {QRectF(edge.left() + round, edge.top(), edge.width() - 2 * round, 1),
            QRectF(edge.left() + round, edge.bottom() - 1, edge.width() - 2 * round, 1),
            QRectF(edge.left(), edge.top() + round, isInside ? 3 : 7, edge.height() - 2 * round),
            QRectF(edge.right() - (isInside ? 3 : 7), edge.top() + round, isInside ? 3 : 7,
                   edge.height() - 2 * round)})
        found.merge(colours(strip));
      EXPECT_EQ(found.size(), 1U) << what << (isInside ? " inside" : " outside");
    }
  }

  /// The first column with ink, and the one behind the last.
  static std::pair<int, int> darkColumns(const QImage& image) {
    int left = image.width(), right = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) > 170) continue;
        left = std::min(left, x);
        right = std::max(right, x + 1);
      }
    }
    return {left, right};
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

TEST_F(UiTest, SizesFollowTheWindow) {
  for (const auto& [content, progressWidth, illustration, card] :
       {std::tuple{QSize(500, 450), 388, QSizeF(436, 200), QSizeF(400, 350)},
        std::tuple{QSize(1000, 900), 888, QSizeF(936, 560), QSizeF(520, 420)},
        std::tuple{QSize(380, 300), 268, QSizeF(316, 200), QSizeF(320, 260)}}) {
    view = ContentView::create();
    open(content);
    const QPointF centre = QRectF(QPointF(), content).center();

    EXPECT_EQ(place("applicationIcon").size(), QSizeF(80, 80));
    EXPECT_EQ(place("applicationIcon").top() - place("installerMainView").top(), 20);
    EXPECT_EQ(place("installerMainView").center(), centre);
    EXPECT_EQ(place("installButton").size(), QSizeF(240, 44));
    become(Case::installing, true);
    EXPECT_EQ(place("progressBar").size(), QSizeF(progressWidth, 4));
    EXPECT_EQ(place("progressBar").left(), 16 + 40);
    become(Case::waitingEnable);
    EXPECT_EQ(size("enableGuideIllustration"), illustration);
    EXPECT_EQ(size("goEnableButton"), QSizeF(std::min(illustration.width(), 360.0), 56));
    const double scale = place("goEnableButton").height() / 56;
    EXPECT_TRUE(content.height() < 400 ? scale > 0.6 : scale == 1) << scale;
    EXPECT_GE(place("enableGuideIllustration").top() - place("waitingInstruction").bottom(),
              18 * scale);
    EXPECT_GE(place("goEnableButton").top() - place("enableGuideIllustration").bottom(),
              18 * scale);
    EXPECT_GE(place("waitingTitle").top(), 0);
    EXPECT_LE(place("goEnableButton").bottom(), content.height());
    view->showExitEnableConfirm = true;
    settle();
    EXPECT_EQ(place("dimming"), QRectF(QPointF(), content));
    EXPECT_EQ(place("exitCard").size(), card);
    EXPECT_EQ(place("exitCard").center(), centre);
  }
}

TEST_F(UiTest, ActionAreaFollowsTheState) {
  open();
  const Names areas = {"installButton", "quitButton",        "needAdminNotice",
                       "failureNotice", "enableWaitingView", "progressBar"};
  for (const auto& [status, area] :
       {std::pair{InstallationStatus(Case::notStarted), areas[0]},
        std::pair{InstallationStatus(Case::installing), areas[0]},
        std::pair{InstallationStatus(Case::success), areas[1]},
        std::pair{InstallationStatus(Case::needAdmin), areas[2]},
        std::pair{InstallationStatus::failure("安装失败"), areas[3]},
        std::pair{InstallationStatus(Case::waitingEnable), areas[4]}}) {
    for (const bool isInstalling : {true, false}) {
      become(status, isInstalling);
      const auto& shown = isInstalling && area != areas[4] ? areas[5] : area;
      for (const auto& each : areas) EXPECT_EQ(item(each) != nullptr, each == shown) << each;
    }
  }
}

TEST_F(UiTest, NoticesHoldAllTheirInk) {
  open();
  for (const auto& [status, box, lines] :
       {std::tuple{InstallationStatus(Case::needAdmin), "needAdminNotice", "请输入管理员账号密码"},
        std::tuple{InstallationStatus::failure("安装失败"), "failureNotice", "安装失败"},
        std::tuple{InstallationStatus::failure("未检测到已安装的输入法"), "failureNotice",
                   "未检测到\n已安装的输入法"},
        std::tuple{InstallationStatus::failure("找不到安装脚本 install.sh"), "failureNotice",
                   "找不到安装脚本\ninstall.sh"}}) {
    become(status);
    EXPECT_EQ(place(box).size(), QSizeF(240, 44));
    EXPECT_EQ(text("noticeText"), lines);
    EXPECT_FALSE(item("noticeText")->property("truncated").toBool()) << lines;
    EXPECT_GE(item("noticeText")->property("font").value<QFont>().pixelSize(), 11) << lines;
    std::vector<QRectF> pieces{place("noticeText")};
    for (const char* button :
         {"keyboardSettingsButton", "retryButton", "retryAuthorisationButton"}) {
      if (!item(button)) continue;
      EXPECT_GE(place(button).left() - pieces.back().right(), 6) << lines;
      pieces.push_back(place(button));
      // Untouched, under the pointer, pressed, and reached by Tab.
      expectFlatEdge(box, lines);
      const QPoint centre = place(button).center().toPoint();
      QTest::mouseMove(window.get(), centre);
      QTest::qWait(150);  // its veil fades in
      expectFlatEdge(box, lines);
      QTest::mousePress(window.get(), Qt::LeftButton, {}, centre);
      expectFlatEdge(box, lines);
      QTest::mouseRelease(window.get(), Qt::LeftButton, {}, {2, 2});
      key(Qt::Key_Tab);
      EXPECT_EQ(focused(), button);
      expectFlatEdge(box, lines);
    }
  }
}

TEST_F(UiTest, GuideTakesAnyName) {
  for (const auto& [name, isWhole] :
       {std::pair{std::string("枫"), true},
        std::pair{std::string("一二三四五六七八九十甲乙丙丁戊己庚辛"), true},
        std::pair{std::string(60, 'M'), false},
        std::pair{std::string("🍁 输入法 👨‍👩‍👧"), true},
        std::pair{std::string("لوحة المفاتيح 2"), true},
        std::pair{std::string("<b>枫</b> &amp;"), true},
        std::pair{std::string("澄枫\n输入法"), true}}) {
    platform.info["CFBundleDisplayName"] = name;
    view = ContentView::create();
    view->installationStatus = Case::waitingEnable;
    open();
    QQuickItem* const guide = item("guideText");
    const int lines = guide->property("lineCount").toInt();
    EXPECT_EQ(guide->property("truncated").toBool(), !isWhole) << name;
    EXPECT_GE(guide->property("shownScale").toDouble(), 0.9 - 1e-9) << name;
    EXPECT_LE(lines, 3) << name;
    EXPECT_LE(guide->width(), 360) << name;
    const QRectF mock = place("guideWindow"), at = place("guideText");
    EXPECT_TRUE(mock.adjusted(12, 22 + 44, -12, -34 - 8).contains(at)) << name;
    EXPECT_TRUE(place("enableGuideIllustration").contains(mock)) << name;
    // The block is shown wherever nothing of the question lies on it.
    const QRectF question = place("guideQuestion");
    EXPECT_TRUE(item("guideBlock") || at.width() > 230) << name;
    EXPECT_FALSE(place("guideBlock").intersects(question)) << name;
    // No line holds one last character, and each is centred as it is seen.
    const double lineHeight = at.height() / lines;
    for (int i = 0; i < lines; ++i) {
      const QRectF strip(at.left() - 8, at.top() + i * lineHeight, at.width() + 16, lineHeight);
      const auto [left, right] = darkColumns(picture(strip));
      EXPECT_GE(right - left, 3 * 16 * window->devicePixelRatio()) << name << i;
      EXPECT_NEAR((left + right) / 2.0, strip.width() / 2 * window->devicePixelRatio(), 1.5)
          << name << i;
    }
  }
}

TEST_F(UiTest, TextsAreWholeAndApart) {
  for (const char* name : {"澄枫输入法", "名称相当长的中文拼音输入法"}) {
    platform.info["CFBundleDisplayName"] = name;
    open();
    for (const auto& status :
         {InstallationStatus(Case::notStarted), InstallationStatus(Case::needAdmin),
          InstallationStatus(Case::waitingEnable),
          InstallationStatus::failure("找不到安装脚本 install.sh"),
          InstallationStatus::failure("未检测到已安装的输入法")}) {
      for (const char* layer : {"screens", "exitConfirmOverlay"}) {
        view->showExitEnableConfirm = std::string_view(layer) != "screens";
        become(status);
        std::vector<QRectF> places;
        for (QQuickItem* each : items(item(layer))) {
          const QVariant isCut = each->property("truncated");
          if (!isCut.isValid()) continue;
          const QRectF rect = each->mapRectToScene(each->boundingRect());
          const std::string said = each->property("text").toString().toStdString();
          EXPECT_TRUE(!isCut.toBool() && QRectF(0, 0, 500, 450).contains(rect)) << said;
          for (const QRectF& other : places) EXPECT_FALSE(rect.intersects(other)) << said;
          places.push_back(rect);
        }
      }
    }
  }
}

TEST_F(UiTest, NamesComeFromTheBundle) {
  open();
  EXPECT_EQ(text("version"), "-");
  EXPECT_EQ(model->appDisplayName(), "澄枫输入法");
  platform.info = {{"CFBundleDisplayName", ""},
                   {"CFBundleName", "Orvane"},
                   {"CFBundleShortVersionString", "2.4.0"}};
  view->showExitEnableConfirm = true;
  view->installationStatus = Case::waitingEnable;
  open();
  EXPECT_EQ(text("exitMessage"), "未启用「Orvane」\n退出安装将无法使用");
  EXPECT_EQ(text("guideText"), "“Orvane”想启用第三方\n输入法“Orvane”");
  EXPECT_EQ(model->version(), "2.4.0");
}

TEST_F(UiTest, ProgressIsTruncatedAndMovesSmoothly) {
  view->installProgress = 0.9;
  open();
  press("installButton");
  EXPECT_EQ(place("progressFill").width(), 0);
  view->installProgress = 0.29;
  settle();
  EXPECT_EQ(text("progressText"), "正在安装 28%");
  EXPECT_LT(place("progressFill").width(), 388 * 0.29);
  EXPECT_EQ(model->progressAnimation(), 250);
  EXPECT_TRUE(QTest::qWaitFor([&] { return place("progressFill").width() == 388 * 0.29; }));
  QAccessibleInterface* const bar = QAccessible::queryAccessibleInterface(item("progressBar"));
  EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
  EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 0.29);
  view->installProgress.set(1.0, LinearAnimation{platform::Seconds(0.3)});
  settle();
  EXPECT_EQ(model->progressAnimation(), 300);
}

TEST_F(UiTest, ButtonsOfTheMainScreen) {
  open();
  for (const auto& [status, button, keepsTrigger] :
       {std::tuple{InstallationStatus(Case::notStarted), "installButton", false},
        std::tuple{InstallationStatus(Case::needAdmin), "retryAuthorisationButton", true},
        std::tuple{InstallationStatus::failure("安装失败"), "retryButton", false}}) {
    become(status);
    view->didTriggerActivation = true;
    platform.workerBlocks.clear();
    press(button);
    EXPECT_EQ(view->didTriggerActivation, keepsTrigger) << button;
    EXPECT_TRUE(view->isInstalling && platform.workerBlocks.size() == 1);
  }
}

TEST_F(UiTest, WaitingScreenAttemptsOnceAndPollsWhileShown) {
  platform.addInputMethod();
  open();
  for (int showing = 0; showing < 2; ++showing) {
    become(Case::waitingEnable);
    EXPECT_EQ(platform.liveTimers(), 1U);
    EXPECT_EQ(calls({"enable"}).size(), showing == 0 ? 1U : 0U);
    platform.takeJournal();
    become(Case::success);
    EXPECT_EQ(platform.liveTimers(), 0U);
    EXPECT_EQ(calls({"activate"}).size(), 1U);  // it comes to the front
  }
  become(Case::waitingEnable);
  platform.advance(6.5);
  press("goEnableButton");
  platform.advance(0.35);
  EXPECT_EQ(calls({"enable"}).size(), 1U);
  EXPECT_EQ(calls({"open"}).size(), 1U);
}

TEST_F(UiTest, RefusedCloseShowsTheOverlayAboveEverything) {
  open();
  auto host = platform.hostWindow();
  view->configureWindow(&host);
  become(Case::waitingEnable);
  key(Qt::Key_Tab);
  EXPECT_EQ(focused(), "goEnableButton");
  EXPECT_FALSE(platform.window.shouldClose());
  settle();
  platform.takeJournal();
  for (const Qt::Key each : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) key(each);
  click({250, place("goEnableButton").bottom() - 2});
  click({2, 2});
  EXPECT_TRUE(item("exitConfirmOverlay"));
  EXPECT_EQ(platform.journal, Lines{});
  for (const char* expected : {"exitButton", "exitGoEnableButton", "exitButton"}) {
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), expected);
  }
  press("exitGoEnableButton");
  EXPECT_FALSE(item("exitConfirmOverlay"));
  EXPECT_FALSE(platform.window.shouldClose());
  settle();
  press("exitButton");
  EXPECT_FALSE(view->showExitEnableConfirm);
  EXPECT_EQ(calls({"terminate"}), Lines{"terminate application"});
}

TEST_F(UiTest, SecondClickPressesNothingNew) {
  const auto doubleClick = [this](const char* button) {
    const QPointF at = place(button).center();
    for (const QEvent::Type type :
         {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonPress,
          QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
      const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
      QMouseEvent event(type, at, window->mapToGlobal(at), Qt::LeftButton, held, {});
      QCoreApplication::sendEvent(window.get(), &event);
      if (type == QEvent::MouseButtonRelease) settle();
    }
  };
  open();
  become(Case::waitingEnable);
  view->showExitEnableConfirm = true;
  settle();
  platform.takeJournal();
  // Under each button of the overlay lies the one below.
  for (const char* button : {"exitGoEnableButton", "exitButton"}) {
    doubleClick(button);
    platform.advance(1);
    EXPECT_LE(calls({"open"}).size(), 1U) << button;
    view->showExitEnableConfirm = true;
    settle();
  }
  EXPECT_EQ(calls({"terminate"}).size(), 1U);
}

TEST_F(UiTest, WindowsKeepInReachAndBesideEachOther) {
  const QRect screen(0, 0, 1920, 1080), installer(460, 90, 1000, 900);
  EXPECT_EQ(reachablePlace(installer, screen), installer.topLeft());
  EXPECT_EQ(reachablePlace({-100, -66, 1000, 900}, {0, 0, 800, 768}), QPoint(0, 0));
  EXPECT_EQ(reachablePlace({100, 300, 400, 500}, {0, 24, 1000, 700}), QPoint(100, 224));
  for (const auto& [size, side, right] : {std::tuple{QSize(408, 230), Side::right, true},
                                          std::tuple{QSize(408, 230), Side::left, false},
                                          std::tuple{QSize(900, 70), Side::right, false}}) {
    const QRect placed(placeBeside(installer, size, screen, side), size);
    EXPECT_TRUE(screen.contains(placed) && !placed.intersects(installer));
    EXPECT_EQ(placed.left() > installer.right(), right);
  }
  // Without room the title bars still are not on top of each other.
  EXPECT_EQ(placeBeside({100, 100, 700, 600}, {408, 230}, {0, 0, 900, 800}, Side::right),
            QPoint(492, 285));
}

TEST_F(UiTest, KeyboardReachesTheButtons) {
  open();
  become(InstallationStatus::failure("安装失败"));
  press("keyboardSettingsButton");
  EXPECT_FALSE(item("focusRing"));
  platform.takeJournal();
  for (const char* expected : {"keyboardSettingsButton", "retryButton", "keyboardSettingsButton"}) {
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), expected);
    EXPECT_TRUE(item("focusRing"));
  }
  key(Qt::Key_Space);
  key(Qt::Key_Return);
  EXPECT_EQ(calls({"open"}).size(), 2U);
  key(Qt::Key_Backtab);
  key(Qt::Key_Return);
  EXPECT_TRUE(view->isInstalling);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QQuickWindow::setSceneGraphBackend("software");
  testing::InitGoogleTest(&argc, argv);
  QGuiApplication application(argc, argv);
  QAccessible::setActive(true);
  setApplicationLook();
  registerInstallerUi();
  return RUN_ALL_TESTS();
}
