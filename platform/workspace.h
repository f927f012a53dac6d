// Launch Services and the workspace. Main thread only.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/text_input_sources.h"

namespace platform {

/// A well-formed URL.
struct Url {
  std::string text;
};

/// The text as a URL; absent if the system's parser refuses it. What parsers refuse
/// differs from system to system.
std::optional<Url> parseUrl(const std::string& text);
/// The file URL of an absolute path.
Url fileUrl(const std::filesystem::path& path);

/// LSRegisterURL: makes the bundle at this path known, again if `inUpdate`.
Status registerWithLaunchServices(const std::filesystem::path& bundle, bool inUpdate);

/// Opens a URL with the application that handles it; does not wait for it.
/// Whether the system has accepted it.
bool openUrl(const Url& url);

/// Requests that the application at this path be opened with a default
/// configuration. Neither waits nor reports.
void openApplication(const std::filesystem::path& bundle);

/// Where an application of this bundle identifier lies; absent if unknown.
std::optional<std::filesystem::path> findApplication(const std::string& bundleIdentifier);

}  // namespace platform
