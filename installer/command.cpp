#include "installer/content_view.h"
#include "platform/child_process.h"

void ContentView::runCommand(const std::string& launchPath,
                             const std::vector<std::string>& arguments) {
  platform::runAndWait(launchPath, arguments);
}
