// One window, its user, the script and the system around it.

#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "installer/content_view.h"
#include "tests/platform/test_platform.h"
#include "tests/simulation/invariants.h"
#include "tests/simulation/schedule.h"

namespace simulation {

/// The product's folders, made once for many worlds.
class Folders {
 public:
  Folders();
  ~Folders();
  Folders(const Folders&) = delete;
  Folders& operator=(const Folders&) = delete;
  const std::filesystem::path& root() const { return root_; }
  /// 0: nothing at the install location; 1: a bundle; 2: one with its settings application.
  void putBundle(int which);
  int bundle() const { return bundle_; }

 private:
  std::filesystem::path root_;
  int bundle_ = -1;
};

class World {
 public:
  explicit World(Folders& folders);
  ~World();

  /// Both throw Broken.
  void apply(const Event& event);
  /// The user allows everything, every script ends, and the window closes.
  void end();

 private:
  void press(bool isShown, int value, void (ContentView::*operation)(), bool keepsActivation);
  void write(int value);
  void endScript(int value);
  void change(int value);
  void closeWindow();
  void check();
  bool isBaseListedAsEnabled() const;

  Folders& folders_;
  test::Platform platform_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  std::unique_ptr<Invariants> invariants_;
  platform::Observation screenWatch_;
  bool isScreenShown_ = false, isResultQueued_ = false;
  std::shared_ptr<platform::InputSourceObject> base_, mode_;
  std::string unread_;  // written by the script, not yet read
  int written_ = 0;
  struct Later {
    int lookups;
    int change;
  };
  std::vector<Later> later_;
};

}  // namespace simulation
