#include "installer/content_view.h"

#include <utf8.h>

#include "platform/file_root.h"
#include "platform/log_file.h"

ContentView::ContentView() = default;
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

void ContentView::appendUILog(const std::string& text) {
  logText.update([&](std::string& log) { log += text; });
  if (!utf8::is_valid(text)) return;
  platform::appendToLogFile(platform::onDisk(kUILogPath), text);
}

void ContentView::runCommand(const std::string& launchPath,
                             const std::vector<std::string>& arguments) {
  platform::runAndWait(launchPath, arguments);
}
