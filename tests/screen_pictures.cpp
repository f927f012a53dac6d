// Draws every screen of the installer at the scale of QT_SCALE_FACTOR.
// usage: screen_pictures ROOT OUTPUT_FOLDER
//   ROOT is what `--root` gives a program.

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <cmath>
#include <filesystem>

#include "platform/linux/file_root_linux.h"
#include "tests/animation_clock.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"

namespace {

using InstallationStatus = ContentView::InstallationStatus;
using Case = InstallationStatus::Case;

/// Keeps the picture of the window, or of one item with what is near.
void take(QQuickWindow& window, const QDir& output, const std::string& name,
          const char* item = nullptr) {
  AnimationClock clock;
  while (QAbstractEventDispatcher::instance()->processEvents({})) continue;  // what moves begins
  clock.moveTo(1000);                                                        // and ends
  QImage drawn = window.grabWindow().convertToFormat(QImage::Format_RGB32);
  const double ratio = window.devicePixelRatio();
  if (item) {
    const auto* const found = window.contentItem()->findChild<QQuickItem*>(QLatin1String(item));
    const QRectF place = found->mapRectToScene(found->boundingRect()).adjusted(-8, -8, 8, 8);
    drawn = drawn.copy(QRectF(place.topLeft() * ratio, place.size() * ratio).toRect());
  }
  drawn.setDevicePixelRatio(1);
  const std::string file = name + "@" + std::to_string(std::lround(ratio)) + "x.png";
  // 0 makes the smallest file.
  if (!drawn.save(output.filePath(QString::fromStdString(file)), "png", 0))
    qFatal("cannot write %s", file.c_str());
}

void takeAll(const QDir& output) {
  const auto view = ContentView::create();
  view->installProgress = 0.42;
  InstallerModel model(view);
  QQuickView window;
  window.setResizeMode(QQuickView::SizeRootObjectToView);
  window.setInitialProperties({{"model", QVariant::fromValue(&model)}});
  window.setSource(contentBodyUrl());
  window.resize((QSizeF(1000, 900) / window.devicePixelRatio()).toSize());
  window.show();

  struct Picture {
    const char* name;
    InstallationStatus status;
    const char* item = "actionArea";
  };
  for (const auto& [name, status, item] :
       {Picture{"start", Case::notStarted, nullptr},
        Picture{"installing", Case::installing, "installerMainView"},
        Picture{"success", Case::success}, Picture{"need-admin", Case::needAdmin},
        Picture{"failed", InstallationStatus::failed("安装失败")},
        Picture{"not-installed", InstallationStatus::failed("未检测到已安装的输入法")},
        Picture{"no-script", InstallationStatus::failed("找不到安装脚本 install.sh")},
        Picture{"waiting", Case::waitingEnable, nullptr}}) {
    view->isInstalling = status.value() == Case::installing;
    view->installationStatus = status;
    take(window, output, name, item);
  }
  view->showExitEnableConfirm = true;
  take(window, output, "exit-confirmation");
}

}  // namespace

int main(int /*argc*/, char** argv) {
  platform::linux_::setFileRoot(std::filesystem::canonical(argv[1]));
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const auto application = startToolkit(argv, "");
  takeAll(QDir(QString::fromLocal8Bit(argv[2])));
  return 0;
}
