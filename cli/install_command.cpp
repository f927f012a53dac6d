#include "cli/commands.h"
#include "cli/installation_front.h"
#include "installer/content_view.h"
#include "platform/file_root.h"

int runInstall(EventOutput& output, const WaitOptions& options) {
  output.phase("script");
  InstallationFront front(output, options,
                          {"安装成功", "日志：" + platform::onDisk(kUILogPath).string()});
  return front.run([](ContentView& view) { view.userPressedInstall(); });
}
