// The installer with its window.

#include <sysexits.h>

#include <iostream>
#include <string>
#include <vector>

#include "app/tessal_input_installer_app.h"
#include "platform/admin_script.h"
#include "platform/application.h"
#include "platform/common/program_options.h"
#include "platform/pictures.h"
#include "platform/program.h"
#include "ui/installer_ui.h"

namespace {

#ifdef Q_OS_MACOS
constexpr const char* kCannotOpenWindow = "Orvane Installer: 无法打开窗口：应用不完整，请重新下载";
#else
constexpr const char* kCannotOpenWindow =
    "Orvane Installer: 无法打开窗口：这里没有图形界面，请改用 orvane-install";
#endif

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> others;  // the system may add some of its own
  if (const auto status =
          platform::parseArguments("Orvane Installer", "在窗口里安装输入法。", argc, argv, others))
    return *status;

  const auto application = startToolkit(argv, kCannotOpenWindow);
  if (platform::applicationIcon(1).width == 0) {
    std::cerr << "Orvane Installer: 无法打开窗口：缺少 AppIcon.png，请重新下载" << std::endl;
    return EX_UNAVAILABLE;
  }
  int status = 0;
  {
    TessalInputInstallerApp app(*application);
    platform::onTerminationRequest(platform::terminateApplication);
    status = TessalInputInstallerApp::main();
  }
  platform::interruptAdminScript();
  return status;
}
