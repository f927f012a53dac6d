// One program of a kind at a time.

#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

/// A place in the user's store that one process can hold. It becomes free when
/// that process ends, however it does.
class SingleInstance {
 public:
  explicit SingleInstance(const std::string& name);
  ~SingleInstance() { release(); }
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Tries to take the place. Returns whether this process holds it now. If another
  /// process does, that one is told, see onOtherStart().
  bool take();
  void release();

  /// Runs `block` when another process has tried to take it. Needs the toolkit.
  void onOtherStart(const std::function<void()>& block);

 private:
  std::filesystem::path file_;
  int descriptor_ = -1;
  std::unique_ptr<QFileSystemWatcher> watcher_;
};
