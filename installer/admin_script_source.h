// The source of the script that runs install.sh with administrator rights.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// What the password prompt says: the bundle's name without its extension, and
/// that it wants to make changes.
std::string adminPrompt(const std::filesystem::path& bundleLocation);

/// The script source. Path and prompt go in as they are: a double quote in
/// either breaks it, which is accepted.
std::string adminScriptSource(const std::string& scriptPath, const std::string& prompt);

/// Whether this failure means that the user has cancelled or was refused, rather
/// than that the script has failed.
bool isAuthorisationRefused(std::optional<int> number, const std::string& message);
