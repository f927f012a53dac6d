// A program with windows.

#include "platform/application.h"

#include <QGuiApplication>
#include <QWindow>

namespace platform {

void activateIgnoringOtherApps() {
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (!window->isVisible()) continue;
    window->raise();
    window->requestActivate();
  }
}

void terminateApplication() {
  QCoreApplication::exit(0);
}

}  // namespace platform
