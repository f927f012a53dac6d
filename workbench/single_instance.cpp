#include "workbench/single_instance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/linux/file_root_linux.h"

SingleInstance::SingleInstance(const std::string& name)
    : file_(platform::linux_::userStore() / ("." + name + ".lock")) {
  std::error_code error;
  std::filesystem::create_directories(file_.parent_path(), error);
}

bool SingleInstance::take() {
  platform::Descriptor file(::open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  // Without a place to hold, a window too many is better than none.
  if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    ::futimens(file.get(), nullptr);  // what the holder watches for
    return false;
  }
  held_ = std::move(file);
  return true;
}

void SingleInstance::onOtherStart(const std::function<void()>& block) {
  watcher_ = std::make_unique<QFileSystemWatcher>();
  watcher_->addPath(QString::fromStdString(file_.string()));
  QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, watcher_.get(), block);
}
