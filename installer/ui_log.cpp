#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

void ContentView::appendUILog(std::string_view text) {
  logText.update([&](LogText& log) { log.append(text); });
  if (!isUtf8(text)) return;

  platform::appendToLogFile(platform::onDisk(kUILogPath), text);
}
