#pragma once

namespace platform {

/// Gives the menu that every application has ("Hide", "Quit", …) the language of the
/// screens. Once the toolkit has made the menu. Main thread.
void translateStandardMenu();

}  // namespace platform
