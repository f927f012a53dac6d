// The application: start-up, main loop, foreground, pictures.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/main_queue.h"

namespace platform {

/// Takes the options that every program of this platform knows out of
/// `arguments` (Linux: `--root DIR`), before anything else of the platform is
/// used. Absent on success, else what is wrong, for the user.
std::optional<std::string> takePlatformOptions(std::vector<std::string>& arguments);

/// The usage text of these options, one indented line each; may be empty.
std::string platformOptionsUsage();

/// Runs the main loop of a program without windows until endMainLoop(), and
/// returns the status given there. Main thread.
int runMainLoop();
/// Ends runMainLoop() after the current block.
void endMainLoop(int status);

/// Runs `block` on the main queue when the process is asked to end by SIGINT,
/// SIGTERM, SIGHUP or SIGQUIT, which then no longer end it, nor does SIGPIPE. The latest block
/// stays until the process ends. Main thread.
void onTerminationRequest(Block block);

/// Brings this application to the front of the others
/// (activateIgnoringOtherApps:); no effect on a program without windows.
void activateIgnoringOtherApps();

/// Quits the application (terminate:), whether or not a window objects.
void terminateApplication();

/// A picture: rows from the top, 4 bytes a pixel, red green blue alpha, colours
/// multiplied by alpha.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

/// The icon of the running application (applicationIconImage), square, with
/// `side` pixels a side. Main thread.
Image applicationIcon(int side);

/// The system symbol of this name ("gearshape.fill", "keyboard") as a black
/// template picture that fits `side` by `side` pixels, centred. Absent if there
/// is no such symbol. Main thread.
std::optional<Image> systemSymbol(const std::string& name, int side);

}  // namespace platform
