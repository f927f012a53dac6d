#include <fstream>

#include "cli/activation_stamp.h"
#include "cli/commands.h"
#include "cli/installation_front.h"
#include "inputsource/tessal_installer.h"

int runActivate(EventOutput& output, const WaitOptions& options, bool once) {
  std::error_code error;
  if (once && std::filesystem::exists(activationStamp(), error)) {
    output.say("已为当前用户启用过，无需操作");
    output.result(kSuccess);
    return kSuccess;
  }
  output.phase("activation");
  InstallationFront front(output, options,
                          {"已启用", "请先运行 orvane-install install 安装输入法"});
  const int status = front.run([](ContentView& view) {
    // As a run of the script leaves it that has put the bundle over one of the
    // same: another account has its settings application already.
    view.installPathExistedBeforeStart = TessalInstaller().isInstalled();
    view.isInstalling = true;
    view.installationStatus = InstallationStatus::installing;
    view.postInstallActivation();
  });
  if (status == kSuccess) {
    std::filesystem::create_directories(activationStamp().parent_path(), error);
    // Without the note the next login does this again, which harms nothing.
    std::ofstream(activationStamp()) << "";
  }
  return status;
}
