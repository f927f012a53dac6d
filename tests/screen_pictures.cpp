// Draws every screen at the scale of QT_SCALE_FACTOR and compares it with the
// picture kept for it.
// usage: screen_pictures ROOT REFERENCE_FOLDER OUTPUT_FOLDER [--renew]
//   ROOT is what `--root` gives a program. A picture that differs is left in
//   OUTPUT_FOLDER: expected, drawn and the difference side by side.

#include <QGuiApplication>
#include <QPainter>
#include <QQuickItem>
#include <QQuickView>
#include <QStyleHints>
#include <QTest>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "platform/linux/file_root_linux.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"
#include "workbench/helper_window.h"
#include "workbench/input_source_list.h"

namespace {

namespace fs = std::filesystem;
using Case = InstallationStatus::Case;

constexpr std::array<int (*)(QRgb), 3> kChannels = {qRed, qGreen, qBlue};
// What may differ without being seen, and what rounding at an edge may change:
// a share of the contrast that the edge has. Another place for the edge changes
// all of it.
constexpr int kFlatTolerance = 2;
constexpr double kEdgeTolerance = 0.3;

/// Whether the pixel is the expected one, up to how its edges were smoothed.
bool isSame(const QImage& expected, const QImage& drawn, int x, int y) {
  for (const auto channel : kChannels) {
    const int wanted = channel(expected.pixel(x, y));
    const int difference = std::abs(wanted - channel(drawn.pixel(x, y)));
    if (difference <= kFlatTolerance) continue;
    int least = wanted, most = wanted;
    for (int j = std::max(y - 1, 0); j <= std::min(y + 1, expected.height() - 1); ++j) {
      for (int i = std::max(x - 1, 0); i <= std::min(x + 1, expected.width() - 1); ++i) {
        least = std::min(least, channel(expected.pixel(i, j)));
        most = std::max(most, channel(expected.pixel(i, j)));
      }
    }
    if (difference > kFlatTolerance + kEdgeTolerance * (most - least)) return false;
  }
  return true;
}

/// Red where they differ; null if they do not.
QImage differenceOf(const QImage& expected, const QImage& drawn) {
  QImage difference(drawn.size(), QImage::Format_RGB32);
  difference.fill(Qt::white);
  bool isAnywhere = expected.size() != drawn.size();
  for (int y = 0; !(expected.size() != drawn.size()) && y < drawn.height(); ++y) {
    for (int x = 0; x < drawn.width(); ++x) {
      if (isSame(expected, drawn, x, y)) continue;
      difference.setPixel(x, y, qRgb(255, 0, 0));
      isAnywhere = true;
    }
  }
  return isAnywhere ? difference : QImage();
}

class Pictures {
 public:
  Pictures(fs::path reference, fs::path output, bool renew)
      : reference_(std::move(reference)), output_(std::move(output)), renew_(renew) {}

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

  /// Keeps or compares the picture of the window, or of one item with what is near.
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
    if (renew_) {
      isGood_ = save(drawn, reference_ / file) && isGood_;
      return;
    }
    const QImage expected(QString::fromStdString((reference_ / file).string()));
    const QImage difference = differenceOf(expected.convertToFormat(QImage::Format_RGB32), drawn);
    if (difference.isNull()) return;
    isGood_ = false;
    std::cerr << file << " differs, see " << (output_ / file).string() << '\n';
    saveSideBySide({expected, drawn, difference}, output_ / file);
  }

  /// Before what the window shows is gone.
  void close() { owner_.reset(); }

  bool isGood() const { return isGood_; }

 private:
  static bool save(const QImage& picture, const fs::path& file) {
    constexpr int kSmallest = 0;
    return picture.save(QString::fromStdString(file.string()), "png", kSmallest);
  }
  static void saveSideBySide(const std::array<QImage, 3>& pictures, const fs::path& file) {
    constexpr int kGap = 8;
    QSize size(-kGap, 0);
    for (const QImage& each : pictures)
      size = {size.width() + kGap + each.width(), std::max(size.height(), each.height())};
    QImage all(size, QImage::Format_RGB32);
    all.fill(Qt::darkGray);
    QPainter painter(&all);
    int x = 0;
    for (const QImage& each : pictures) {
      painter.drawImage(x, 0, each);
      x += each.width() + kGap;
    }
    save(all, file);
  }

  const fs::path reference_, output_;
  const bool renew_;
  std::unique_ptr<QObject> owner_;
  QQuickWindow* window_ = nullptr;
  bool isGood_ = true;
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
  if (argc != 4 && !(argc == 5 && std::string_view(argv[4]) == "--renew")) {
    std::cerr << "usage: screen_pictures ROOT REFERENCE_FOLDER OUTPUT_FOLDER [--renew]\n";
    return 64;
  }
  platform::linux_::setFileRoot(std::filesystem::canonical(argv[1]));
  qputenv("QT_QPA_PLATFORM", "offscreen");
  prepareToolkit();
  QGuiApplication application(argc, argv);
  QGuiApplication::styleHints()->setCursorFlashTime(0);
  setApplicationLook();
  registerInstallerUi();

  Pictures pictures(argv[2], argv[3], argc == 5);
  takeInstaller(pictures);
  takeWorkbench(pictures);
  return pictures.isGood() ? 0 : 1;
}
