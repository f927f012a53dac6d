// What the input-source service stores for the user, in a property list that every
// process may change. Main thread only.

#pragma once

#include <functional>
#include <set>
#include <string>

#include "platform/text_input_sources.h"

namespace platform::linux_ {

struct InputSourceState {
  /// Names of bundles in the folder of input methods.
  std::set<std::string> registered;
  /// Identifiers of the bundles that the user has allowed, and of those that the
  /// user has been asked about and not answered yet.
  std::set<std::string> allowed;
  std::set<std::string> asked;
  /// Identifiers of sources.
  std::set<std::string> enabled;
  /// One of the enabled sources; empty if none of them is current.
  std::string current;

  bool operator==(const InputSourceState&) const = default;
};

/// The state now; that of a new user if there is none or its file is damaged.
InputSourceState readInputSourceState();

/// Makes one change with no other process in between. The status of `change`, or
/// kParameterError if its result cannot be stored: then nothing has changed.
Status changeInputSourceState(const std::function<Status(InputSourceState&)>& change);

}  // namespace platform::linux_
