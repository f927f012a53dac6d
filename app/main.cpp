// The installer with its window.

#include <string>
#include <vector>

#include "app/tessal_input_installer_app.h"
#include "platform/admin_script.h"
#include "platform/application.h"
#include "platform/common/program_options.h"
#include "platform/program.h"
#include "ui/installer_ui.h"

namespace {

#ifdef Q_OS_MACOS
constexpr const char* kNoWindows =
    "Orvane Installer: cannot open its window: a part of this application is missing; download "
    "it again";
#else
constexpr const char* kNoWindows =
    "Orvane Installer: cannot open its window: there is no display; orvane-install needs none";
#endif

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> others;  // the system may give an application some
  if (const auto status =
          platform::parseArguments("Orvane Installer", "在窗口里安装输入法。", argc, argv, others))
    return *status;

  const auto application = startToolkit(argv, kNoWindows);
  int status = 0;
  {
    TessalInputInstallerApp app(*application);
    platform::onTerminationRequest(platform::terminateApplication);
    status = TessalInputInstallerApp::main();
  }
  platform::interruptAdminScript();
  return status;
}
