// The installer with its window.

#include <QGuiApplication>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "app/tessal_input_installer_app.h"
#include "platform/admin_script.h"
#include "platform/application.h"
#include "ui/installer_ui.h"

namespace {

constexpr int kBadUsage = 64;
constexpr int kNoDisplay = 69;

std::string usage() {
  const std::string options = platform::platformOptionsUsage();
  return "usage: Orvane Installer" + std::string(options.empty() ? "\n" : " [OPTION]...\n") +
         options;
}

/// The toolkit aborts without a display; this ends the program with a reason.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& message) {
  if (type != QtFatalMsg) return;
  std::cerr << "Orvane Installer: no display to open a window on\n" << message.toStdString();
  std::_Exit(kNoDisplay);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  auto problem = platform::takePlatformOptions(arguments);
  if (!problem && !arguments.empty()) problem = "unknown argument: " + arguments.front();
  if (problem) {
    std::cerr << "Orvane Installer: " << *problem << "\n\n" << usage();
    return kBadUsage;
  }

  prepareToolkit();
  qInstallMessageHandler(endWithoutDisplay);
  argc = 1;
  QGuiApplication application(argc, argv);
  qInstallMessageHandler(nullptr);

  int status = 0;
  {
    TessalInputInstallerApp app(application);
    platform::onTerminationRequest(platform::terminateApplication);
    status = TessalInputInstallerApp::main();
  }
  platform::interruptAdminScript();
  return status;
}
