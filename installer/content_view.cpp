#include "installer/content_view.h"

#include <utf8.h>

#include "app/window/window_close_interceptor.h"
#include "installer/log_files.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

ContentView::ContentView() : closeInterceptor(std::make_unique<WindowCloseInterceptor>()) {}
ContentView::~ContentView() {
  for (const auto& tail : tails_)
    if (const auto running = tail.lock()) running->terminate();
}

std::shared_ptr<ContentView> ContentView::create() {
  // The constructor is private, out of make_shared's reach.
  struct Shared : ContentView {};
  auto view = std::make_shared<Shared>();
  view->watchWindowHooks();
  return view;
}

std::string ContentView::appDisplayName() {
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    std::string name = platform::bundleInfoText(key).value_or("");
    if (!name.empty()) return name;
  }
  return "澄枫输入法";
}

void ContentView::appendUILog(const std::string& text) {
  logText.update([&](std::string& log) { log += text; });
  if (!utf8::is_valid(text)) return;
  platform::appendToLogFile(platform::onDisk(kUILogPath), text);
}

void ContentView::runCommand(const std::string& launchPath,
                             const std::vector<std::string>& arguments) {
  platform::runAndWait(launchPath, arguments);
}
