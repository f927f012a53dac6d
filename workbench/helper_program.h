// A helper program with one window, which looks like the installer's own.

#pragma once

#include <QGuiApplication>
#include <QQuickView>
#include <QString>
#include <QVariantMap>
#include <array>
#include <functional>
#include <future>
#include <memory>
#include <string>

#include "ui/installer_ui.h"
#include "ui/window_placement.h"

/// The toolkit and the window of a helper program; one a process.
class HelperProgram {
 public:
  /// `name` introduces what it says on standard error. Without a display the
  /// process ends here, with `noDisplayWords`, a reason and this status.
  HelperProgram(const char* name, const char* noDisplayWords, int noDisplayStatus);

  /// Puts the window on this side of a frame on the screen, and not in the middle.
  void placeBeside(const QRect& frame, Side side) {
    neighbour_ = frame;
    side_ = side;
  }

  /// Shows the screen "`screen`.qml", as large as its root asks to be, now and later. `isClosable`
  /// gives it a close button, and `shouldClose` is asked when the user closes it.
  void open(const QString& screen, const QVariantMap& properties, const QString& title,
            bool isClosable, std::function<bool()> shouldClose);

  /// Puts the window above all others.
  void keepOnTop() { view_.setFlag(Qt::WindowStaysOnTopHint); }

  /// Runs until end(); the status given there. The screen is gone by then, so what
  /// it shows may go too.
  int run();
  static void end(int status) { QGuiApplication::exit(status); }

 private:
  std::string name_;
  int argumentCount_ = 1;
  std::array<char*, 2> arguments_{name_.data(), nullptr};
  QGuiApplication application_;
  std::future<void> fonts_ = readFonts();
  QQuickView view_;
  std::unique_ptr<QObject> guard_;  // against what is not meant for the window
  QRect neighbour_;
  Side side_ = Side::right;
};
