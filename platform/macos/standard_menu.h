#pragma once

namespace platform {

/// Gives the menu that every application has ("Hide", "Quit", …) the language of the
/// screens, and the item that tells of the application and of Qt's licence. Once, when
/// the toolkit has made the menu. Main thread.
void completeStandardMenu();

}  // namespace platform
