// A program of this system: its options, its main loop, and requests to end it.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/main_queue.h"

namespace platform {

/// Readies this process, before anything else is done in it: a closed standard
/// stream must not be taken by a file, and what goes wrong for good ends it with a
/// reason. Absent, or what it lacks to run at all, for the user.
[[nodiscard]] std::optional<std::string> prepareProcess();

/// An option that every program of this platform takes beside its own.
struct PlatformOption {
  std::string name;       // "--root"
  std::string valueName;  // "DIR"
  std::string description;
  /// Uses the value that was given. Absent on success, else what is wrong with
  /// it, for the user. Called before anything else of the platform is used.
  std::function<std::optional<std::string>(const std::string& value)> use;
};

/// These options (Linux: `--root DIR` and `--home DIR`; macOS has none).
std::vector<PlatformOption> platformOptions();

/// Runs the main loop of a program without windows until endMainLoop(), and
/// returns the status given there. Main thread.
int runMainLoop();
/// Ends runMainLoop() soon after the current block. Blocks that are already on the
/// main queue may still run, or be destroyed unrun. Main thread.
void endMainLoop(int status);

/// Runs `block` on the main queue when the process is asked to end by SIGINT,
/// SIGTERM, SIGHUP or SIGQUIT. These signals then no longer end the process, and
/// SIGPIPE does not either. A later call replaces the block; the last one stays
/// until the process ends. Main thread.
void onTerminationRequest(Block block);

}  // namespace platform
