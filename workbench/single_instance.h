// One program of a kind at a time.

#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/posix/descriptor.h"

/// A place in the user's store that one process can hold. It becomes free when
/// that process ends, however it does.
class SingleInstance {
 public:
  explicit SingleInstance(const std::string& name);

  /// Tries to take the place. Returns whether this process holds it now. If another
  /// process does, that one is told, see onOtherStart().
  bool take();
  void release() { held_.close(); }

  /// Runs `block` when another process has tried to take it. Needs the toolkit.
  void onOtherStart(const std::function<void()>& block);

 private:
  std::filesystem::path file_;
  platform::Descriptor held_;
  std::unique_ptr<QFileSystemWatcher> watcher_;
};
