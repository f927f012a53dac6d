// What the agent and the command line need of the input-source service beside the
// contract. Its sources are one built-in layout and those of the bundles below
// "/Library/Input Methods" that have been registered. Main thread only.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/text_input_sources.h"

namespace platform {

/// A source as it was when it was listed. A base source has the identifier of its
/// bundle; a mode source has a mode identifier as well.
struct InputSourceObject {
  std::string id;
  std::string bundleId;
  std::optional<std::string> modeId;
  /// For the user.
  std::string name;
  bool isSelectCapable = false;
  bool isEnabled = false;
  bool isCurrent = false;
  /// Whether the user has been asked to allow its bundle and not answered yet.
  bool isAsked = false;
};

namespace linux_ {

/// The built-in layout: always enabled, and current when nothing else is.
inline constexpr const char* kBuiltInLayoutId = "com.apple.keylayout.ABC";

/// The built-in layout, then the sources of each bundle, the base source before its
/// modes. Exactly one is current.
std::vector<InputSource> installedInputSources();

/// The first installed source of this identifier; null if there is none.
InputSource findInputSource(const std::string& id);

/// The user's answer for the bundle of this source, asked for or not: to allow it
/// enables all its sources, else they are disabled and the next enable asks again.
Status answerForUser(const InputSource& source, bool isAllowed);

/// Runs `block` on the main queue after any change of the sources by any process,
/// until the result is destroyed. Never null.
[[nodiscard]] Observation observeInputSources(Block block);

}  // namespace linux_
}  // namespace platform
