#include <utf8.h>

#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

void ContentView::appendUILog(std::string_view text) {
  // In place: a long log must not be copied for every piece of it.
  logText.update([&](std::string& log) { log.append(text); });
  if (!utf8::is_valid(text.begin(), text.end())) return;

  platform::appendToLogFile(platform::onDisk(kUILogPath), text);
}
