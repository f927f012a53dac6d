#include <utf8.h>

#include <cstdio>
#include <filesystem>

#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/file_root.h"

void ContentView::appendUILog(std::string_view text) {
  // In place: a long log must not be copied for every piece of it.
  logText.update([&](std::string& log) { log.append(text); });
  if (!utf8::is_valid(text.begin(), text.end())) return;

  const std::filesystem::path path = platform::onDisk(kUILogPath);
  createIfMissing(path);
  const FileHandle file = openForWriting(path);
  if (!file) return;
  std::fseek(file.get(), 0, SEEK_END);
  std::fwrite(text.data(), 1, text.size(), file.get());
}
