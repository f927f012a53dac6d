// What the system and the user's preferences hold of the input method, and how it is taken
// away. Main thread.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inputsource/tessal_installer.h"

/// All that the system knows of the input method: its modes, then the base.
std::vector<platform::InputSource> ownSources();
/// Deselects and disables sources that ownSources() gave, also when their bundle is gone
/// by now. How many the service has disabled.
int deselectAndDisable(const std::vector<platform::InputSource>& sources);

/// The bundle identifier that the entries carry: of the installed bundle, or the one that
/// it should have.
std::string entryBundleID();

/// What one of the user's three lists holds of a mode.
struct ListedEntries {
  std::string list;  ///< Its key.
  /// Entries of this mode under the input method's own bundle identifier.
  int own = 0;
  /// Bundle identifiers under which entries name this mode that are not its own.
  std::vector<std::string> foreign;
  /// The lists cannot be read, or this one or an element of it is of a kind that does not
  /// belong there.
  bool isDamaged = false;
};
std::vector<ListedEntries> listedEntries(TessalInstaller::InputMode mode);

/// Takes the entries of the input method's bundle out of the three lists. All others stay
/// as they are, in their order. How many it took; absent if that could not be stored.
std::optional<int> removeOrvaneFromHIToolboxDefaults(const std::string& bundleID);
