// The state of the input-source service: a property list of the user that every
// process may change. Main thread only.

#pragma once

#include <functional>
#include <set>
#include <string>

#include "platform/text_input_sources.h"

namespace platform::linux_ {

/// The built-in layout: always enabled, and current when nothing else is.
inline constexpr const char* kBuiltInLayoutId = "com.apple.keylayout.ABC";

struct InputSourceState {
  /// Bundles, as paths within the folder of input methods.
  std::set<std::string> registered;
  /// Bundle identifiers.
  std::set<std::string> allowed;
  std::set<std::string> asked;
  /// Source identifiers, without the built-in layout.
  std::set<std::string> enabled;
  std::string current = kBuiltInLayoutId;

  bool operator==(const InputSourceState&) const = default;
};

/// The state now; that of a new user if there is none or its file is damaged.
InputSourceState readInputSourceState();

/// Makes one change with no other process in between. The status of `change`, or
/// kInputOutputError if its result cannot be stored: then nothing has changed.
Status changeInputSourceState(const std::function<Status(InputSourceState&)>& change);

enum class WatchedState { enabledSources, everything };

/// Runs `block` on the main queue after any process, this one included, has
/// changed the set of enabled sources or, if so asked, anything of the state,
/// until the result is destroyed. Never null.
[[nodiscard]] Observation observeInputSources(WatchedState watched, Block block);

}  // namespace platform::linux_
