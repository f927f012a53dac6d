#include "workbench/helper_program.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QQuickItem>
#include <QScreen>
#include <QStyleHints>
#include <QUrl>
#include <cstdlib>
#include <iostream>
#include <utility>

#include "platform/host_window.h"
#include "workbench/password_field.h"
#include "workbench/switch_item.h"

// The build names this function after the QML module. It must be called, because
// nothing else keeps it in a static library.
void qml_register_types_Orvane_Workbench();

namespace {

/// Who reports, and how a fatal message ends the process.
struct Reporter {
  std::string name;
  std::string fatalWords;
  int fatalStatus = 1;
};
Reporter& reporter() {
  static Reporter instance;
  return instance;
}

/// Drops the toolkit's messages for its own developers: they may tell which keys
/// were pressed.
void report(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  std::cerr << (type == QtFatalMsg ? reporter().fatalWords : reporter().name) << ": "
            << message.toStdString() << '\n';
  if (type == QtFatalMsg) std::_Exit(reporter().fatalStatus);
}

/// Keeps a window that has just appeared from being pressed: that is the second click
/// of a double click on what was there before.
class FreshWindowGuard : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* window, QEvent* event) override {
    if (event->type() == QEvent::Expose && !sinceShown_.isValid()) sinceShown_.start();
    const bool isPress = event->type() == QEvent::MouseButtonPress;
    const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
    return (isPress && !sinceShown_.hasExpired(interval)) || QObject::eventFilter(window, event);
  }

 private:
  QElapsedTimer sinceShown_;
};

/// Makes the settings that must stand before there is an application. Returns
/// `name`.
const char* prepare(const char* name, const char* noDisplayWords, int noDisplayStatus) {
  reporter() = {name, noDisplayWords, noDisplayStatus};
  qInstallMessageHandler(report);
  prepareToolkit();
  return name;
}

}  // namespace

HelperProgram::HelperProgram(const char* name, const char* noDisplayWords, int noDisplayStatus)
    : name_(prepare(name, noDisplayWords, noDisplayStatus)),
      application_(argumentCount_, arguments_.data()) {
  QGuiApplication::setQuitOnLastWindowClosed(false);
  setApplicationLook();
  registerInstallerUi();
  Q_INIT_RESOURCE(qmlcache_orvane_workbench);
  qml_register_types_Orvane_Workbench();
  SwitchItem::installAccessibility();
  installPasswordFieldAccessibility();
}

void HelperProgram::open(const QString& screen, const QVariantMap& properties, const QString& title,
                         bool isClosable, std::function<bool()> shouldClose) {
  view_.setResizeMode(QQuickView::SizeRootObjectToView);
  view_.setInitialProperties(properties);
  view_.setSource(
      QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Workbench/%1.qml").arg(screen)));

  QQuickItem* const root = view_.rootObject();
  const auto fit = [this, root] {
    const QSize size = QSizeF(root->implicitWidth(), root->implicitHeight()).toSize();
    view_.setMinimumSize(size);
    view_.setMaximumSize(size);
    view_.resize(size);
  };
  QObject::connect(root, &QQuickItem::implicitWidthChanged, &view_, fit);
  QObject::connect(root, &QQuickItem::implicitHeightChanged, &view_, fit);
  fit();
  const QRect available = view_.screen()->availableGeometry();
  QRect frame(QPoint(), view_.size());
  frame.moveCenter(available.center());
  if (neighbour_.isValid())
    frame.moveTopLeft(::placeBeside(neighbour_, frame.size(), available, side_));
  view_.setFramePosition(reachablePlace(frame, available));

  Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          (view_.flags() & Qt::WindowStaysOnTopHint);
  flags.setFlag(Qt::WindowCloseButtonHint, isClosable);
  view_.setFlags(flags);
  view_.setTitle(title);
  guard_ = std::make_unique<FreshWindowGuard>();
  view_.installEventFilter(guard_.get());
  platform::HostWindow(view_).setShouldClose(std::move(shouldClose));
  setIconOnceShown(view_);
  view_.show();
  view_.requestActivate();
}

int HelperProgram::run() {
  const int status = QGuiApplication::exec();
  view_.setSource({});
  return status;
}
