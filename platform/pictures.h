// Pictures that the system has: the application's icon, and symbols.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// A picture: rows from the top, 4 bytes per pixel, red green blue alpha, colours
/// multiplied by alpha.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

/// The icon of the running application (applicationIconImage), square, `side` by
/// `side` pixels. Main thread.
Image applicationIcon(int side);

/// The system symbol of this name ("gearshape.fill", "keyboard") as a black
/// template picture that fits `side` by `side` pixels, centred. Absent if there
/// is no such symbol. Main thread.
std::optional<Image> systemSymbol(const std::string& name, int side);

}  // namespace platform
