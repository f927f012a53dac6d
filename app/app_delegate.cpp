#include "app/app_delegate.h"

#include <QGuiApplication>

#include "platform/application.h"

void AppDelegate::install(QGuiApplication& application) const {
  // The toolkit would quit without asking the delegate.
  QGuiApplication::setQuitOnLastWindowClosed(false);
  QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application, [this] {
    if (applicationShouldTerminateAfterLastWindowClosed()) platform::terminateApplication();
  });
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const {
  return true;
}
