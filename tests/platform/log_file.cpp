#include "platform/log_file.h"

#include "tests/platform/test_platform.h"

namespace platform {

void emptyLogFile(const std::filesystem::path& path) {
  test::active->logs[path].clear();
}
void appendToLogFile(const std::filesystem::path& path, std::string_view entry) {
  test::active->logs[path].append(entry);
}
bool isOwnLogFile(const std::filesystem::path& path) {
  return test::active->logs.contains(path);
}

}  // namespace platform
