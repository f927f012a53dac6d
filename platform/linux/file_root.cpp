#include "platform/file_root.h"

#include <QStandardPaths>

#include "platform/linux/file_root_linux.h"

namespace platform {

namespace {

std::optional<std::filesystem::path>& root() {
  static std::optional<std::filesystem::path> folder;
  return folder;
}

}  // namespace

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return root() ? *root() / path.relative_path() : path;
}

namespace linux_ {

void setFileRoot(const std::filesystem::path& folder) {
  root() = folder;
}

std::optional<std::filesystem::path> fileRoot() {
  return root();
}

std::vector<std::string> rootArguments() {
  return root() ? std::vector<std::string>{"--root", root()->string()} : std::vector<std::string>{};
}

std::filesystem::path userStore() {
  if (root()) return *root() / "user";
  const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return std::filesystem::path(dataHome.toStdString()) / "orvane-workbench";
}

}  // namespace linux_
}  // namespace platform
