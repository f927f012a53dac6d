// A program of this system: its options, its main loop, and requests to end it.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/main_queue.h"

namespace platform {

/// An option that every program of this platform takes beside its own.
struct PlatformOption {
  std::string name;       // "--root"
  std::string valueName;  // "DIR"
  std::string description;
  /// Checks the value that was given and uses it from now on. Absent on success,
  /// else what is wrong with it, for the user. Before any service is used.
  std::function<std::optional<std::string>(const std::string& value)> use;
};

/// These options (Linux: `--root DIR` and `--home DIR`; macOS has none).
std::vector<PlatformOption> platformOptions();

/// What is wrong if one of them had to be given and was not, for the user (Linux:
/// `--root`); else absent.
std::optional<std::string> missingOption();

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
