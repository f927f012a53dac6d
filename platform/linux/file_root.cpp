#include "platform/file_root.h"

#include <QStandardPaths>

#include "platform/linux/file_root_linux.h"

namespace platform {

namespace {

std::optional<std::filesystem::path> root;
std::optional<std::filesystem::path> store;

}  // namespace

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return root ? *root / path.relative_path() : path;
}

std::filesystem::path userLibrary() {
  return linux_::userStore() / "Library";
}

namespace linux_ {

void setUserStore(const std::filesystem::path& folder) {
  store = folder;
}

void setFileRoot(const std::filesystem::path& folder) {
  root = folder;
}

bool isFileRootGiven() {
  return root.has_value();
}

std::optional<std::filesystem::path> fileRoot() {
  return root == "/" ? std::nullopt : root;
}

std::vector<std::string> rootArguments() {
  std::vector<std::string> arguments;
  if (root) arguments = {"--root", root->string()};
  if (store) arguments.insert(arguments.end(), {"--home", store->string()});
  return arguments;
}

std::filesystem::path userStore() {
  if (store) return *store;
  if (const auto below = fileRoot()) return *below / "user";
  const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return std::filesystem::path(dataHome.toStdString()) / "orvane-workbench";
}

}  // namespace linux_
}  // namespace platform
