// The installer with its window.

#include <QGuiApplication>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "app/tessal_input_installer_app.h"
#include "platform/admin_script.h"
#include "platform/application.h"
#include "platform/common/program_options.h"
#include "platform/program.h"
#include "ui/installer_ui.h"

namespace {

constexpr int kNoWindows = 69;
#ifdef Q_OS_MACOS
constexpr const char* kReason = "a part of this application is missing; download it again";
#else
constexpr const char* kReason = "there is no display; orvane-install needs none";
#endif

/// The toolkit aborts where it can open no window; this ends the program with a reason.
void endWithoutWindows(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  std::cerr << "Orvane Installer: cannot open its window: " << kReason << '\n';
  std::_Exit(kNoWindows);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> others;  // the system may give an application some
  if (const auto status = platform::parseArguments(
          "Orvane Installer", "Installs the input method in a window.", argc, argv, others))
    return *status;

  prepareToolkit();
  qInstallMessageHandler(endWithoutWindows);
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
