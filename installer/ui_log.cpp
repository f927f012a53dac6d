#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

void ContentView::appendUILog(std::string text) {
  std::string_view entry;
  logText.update([&](LogText& log) { entry = log.append(std::move(text)); });
  if (!isUtf8(entry)) return;

  platform::appendToLogFile(platform::onDisk(kUILogPath), entry);
}
