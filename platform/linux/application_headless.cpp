// A program without windows.

#include <QCoreApplication>

#include "platform/application.h"

namespace platform {

void activateIgnoringOtherApps() {}

void terminateApplication() {
  QCoreApplication::exit(0);
}

}  // namespace platform
