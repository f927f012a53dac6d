// Draws every screen at the scale of QT_SCALE_FACTOR.
// usage: screen_pictures ROOT OUTPUT_FOLDER
//   ROOT is what `--root` gives a program.

#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QStyleHints>
#include <QTest>
#include <cmath>
#include <filesystem>
#include <iostream>

#include "platform/linux/file_root_linux.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"
#include "workbench/helper_window.h"
#include "workbench/input_source_list.h"

namespace {

using Case = InstallationStatus::Case;

class Pictures {
 public:
  explicit Pictures(const QDir& output) : output_(output) {}

  void open(const QUrl& screen, const QVariantMap& properties, QSize size) {
    auto view = std::make_unique<QQuickView>();
    view->setResizeMode(QQuickView::SizeRootObjectToView);
    view->setInitialProperties(properties);
    view->setSource(screen);
    view->resize(size);
    view->show();
    window_ = view.get();
    owner_ = std::move(view);
  }

  void openHelper(const char* name, const QVariantMap& properties) {
    auto engine = std::make_unique<QQmlApplicationEngine>();
    window_ =
        qobject_cast<QQuickWindow*>(openHelperWindow(*engine, QLatin1String(name), properties));
    owner_ = std::move(engine);
  }

  /// Keeps the picture of the window, or of one item with what is near.
  void take(const std::string& name, const char* item = nullptr) {
    QTest::qWait(400);  // until what moves has arrived
    QImage drawn = window_->grabWindow().convertToFormat(QImage::Format_RGB32);
    const double ratio = window_->devicePixelRatio();
    if (item) {
      const auto* const found = window_->contentItem()->findChild<QQuickItem*>(QLatin1String(item));
      const QRectF place = found->mapRectToScene(found->boundingRect()).adjusted(-8, -8, 8, 8);
      drawn = drawn.copy(QRectF(place.topLeft() * ratio, place.size() * ratio).toRect());
    }
    drawn.setDevicePixelRatio(1);
    const std::string file = name + "@" + std::to_string(std::lround(ratio)) + "x.png";
    constexpr int kSmallest = 0;
    if (!drawn.save(output_.filePath(QString::fromStdString(file)), "png", kSmallest))
      qFatal("cannot write %s", file.c_str());
  }

  /// Before what the window shows is gone.
  void close() { owner_.reset(); }

 private:
  const QDir output_;
  std::unique_ptr<QObject> owner_;
  QQuickWindow* window_ = nullptr;
};

void takeInstaller(Pictures& pictures) {
  const auto view = ContentView::create();
  view->installProgress = 0.42;
  InstallerModel model(view);
  const double scale = qGuiApp->devicePixelRatio();
  pictures.open(contentBodyUrl(), {{"model", QVariant::fromValue(&model)}},
                (QSizeF(1000, 900) / scale).toSize());
  const auto become = [&](InstallationStatus status, bool isInstalling = false) {
    view->isInstalling = isInstalling;
    view->installationStatus = std::move(status);
  };
  pictures.take("start");
  become(Case::installing, true);
  pictures.take("installing", "installerMainView");
  become(Case::success);
  pictures.take("success", "actionArea");
  become(Case::needAdmin);
  pictures.take("need-admin", "actionArea");
  become(InstallationStatus::failure("安装失败"));
  pictures.take("failed", "actionArea");
  become(InstallationStatus::failure("未检测到已安装的输入法"));
  pictures.take("not-installed", "actionArea");
  become(InstallationStatus::failure("找不到安装脚本 install.sh"));
  pictures.take("no-script", "actionArea");
  become(Case::waitingEnable);
  pictures.take("waiting");
  view->showExitEnableConfirm = true;
  pictures.take("exit-confirmation");
  pictures.close();
}

void takeWorkbench(Pictures& pictures) {
  const QString name = QStringLiteral("澄枫输入法");
  pictures.openHelper("PasswordWindow",
                      {{"prompt", QStringLiteral("Orvane Installer 想要进行更改")},
                       {"userName", QStringLiteral("澄枫")}});
  pictures.take("password");
  pictures.openHelper("ConsentWindow", {{"appName", name}, {"inputMethodName", name}});
  pictures.take("consent");
  InputSourceList list;
  pictures.openHelper("SettingsWindow", {{"list", QVariant::fromValue(&list)}});
  pictures.take("settings");
  pictures.close();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: screen_pictures ROOT OUTPUT_FOLDER\n";
    return 64;
  }
  platform::linux_::setFileRoot(std::filesystem::canonical(argv[1]));
  qputenv("QT_QPA_PLATFORM", "offscreen");
  prepareToolkit();
  QGuiApplication application(argc, argv);
  QGuiApplication::styleHints()->setCursorFlashTime(0);
  setApplicationLook();
  registerInstallerUi();

  Pictures pictures{QDir(QString::fromLocal8Bit(argv[2]))};
  takeInstaller(pictures);
  takeWorkbench(pictures);
  return 0;
}
