#include "tests/platform/test_platform.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

#include "platform/file_root.h"
#include "tests/identifiers.h"

namespace test {

Platform* active = nullptr;

void note(const std::string& line) {
  active->journal.push_back(line);
}

Platform::Platform() {
  active = this;
  std::string pattern = std::filesystem::temp_directory_path() / "orvane-test-XXXXXX";
  root = ::mkdtemp(pattern.data());
  std::filesystem::create_directories(root / "tmp");
}

Platform::~Platform() {
  // What they hold may take others back.
  queue.clear();
  std::exchange(scheduled, {}).clear();
  workerBlocks.clear();
  std::filesystem::remove_all(root);
  active = nullptr;
}

std::vector<std::string> Platform::takeJournal() {
  return std::exchange(journal, {});
}

void Platform::putFile(const std::filesystem::path& path, const std::string& content) {
  const auto file = platform::onDisk(path);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

std::string Platform::readFile(const std::filesystem::path& path) const {
  std::ifstream stream(platform::onDisk(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Platform::putInstalledBundle() {
  const std::filesystem::path info = kBundle + "/Contents/Info.plist";
  putFile(info, "");
  propertyLists[platform::onDisk(info)] = {{"CFBundleIdentifier", kBase}};
}

}  // namespace test
