// The input-source service of the workbench: what the text_input_sources.h
// contract, the agent and the command line share. Its sources are the registered
// bundles below "/Library/Input Methods" and one built-in layout; its state is a
// property list of the user that every process may change. Main thread only.

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/host_window.h"
#include "platform/text_input_sources.h"

namespace platform::linux_ {

/// A source as it is now. A base source carries the identifier of its bundle; a
/// mode source has a mode identifier beside it.
struct InputSourceInfo {
  std::string id;
  std::string bundleId;
  std::optional<std::string> modeId;
  /// For the user.
  std::string name;
  bool isSelectCapable = false;
  bool isEnabled = false;
  bool isCurrent = false;
  /// Whether the user has allowed its bundle.
  bool isAllowed = false;
  /// Whether the user has been asked to allow its bundle and not answered yet.
  bool isAsked = false;
};

/// The built-in layout, then the sources of each bundle on disk, by its path,
/// the base source before its modes. Exactly one is current.
std::vector<InputSourceInfo> installedInputSources();

/// The first installed source of this identifier; absent if there is none.
std::optional<InputSourceInfo> findInputSource(const std::string& id);

/// Makes the sources of a bundle below "/Library/Input Methods" known. A bundle
/// whose identifier has no component "inputmethod" is no input method: it is ignored.
/// kFileNotFound if there is no bundle, kParameterError if it lies elsewhere.
Status registerInputMethod(const std::filesystem::path& bundle);

/// Enables a source; a base source brings its modes. As long as the user has not
/// allowed the bundle this only asks, through the agent if it can be shown.
/// kParameterError if there is no such source.
Status enableInputSource(const std::string& id);

/// Disables this one source. If it was current, the built-in layout becomes current.
/// The user's permission stays as long as the bundle does. kParameterError if there is
/// no such source or it is the built-in layout.
Status disableInputSource(const std::string& id);

/// Makes an enabled, select-capable source current, else kParameterError.
Status selectInputSource(const std::string& id);

/// The user's answer for the bundle of this source. allow enables all its sources;
/// deny disables them, and the next enable asks again. Both work without a question.
/// kParameterError if no bundle has such a source.
Status allowInputMethod(const std::string& id);
Status denyInputMethod(const std::string& id);

/// Starts the agent of the running bundle on the same root and does not wait for
/// it. Whether it has started; it needs a display.
bool startInputSourceAgent(std::vector<std::string> arguments);

/// From now on the agent is asked to open its windows beside the frame that `frame`
/// returns when it is started. Main thread.
void placeAgentBeside(std::function<std::optional<Rect>()> frame);

}  // namespace platform::linux_
