// The system's password prompt, and what its refusal looks like.

#pragma once

#include <string>

#include "platform/admin_script.h"

/// What the prompt says: the running bundle's name without its extension, and
/// that it wants to make changes.
std::string adminPrompt();

/// Whether this failure means that the user has cancelled or was refused, rather
/// than that the script has failed.
bool isAuthorisationRefused(const platform::AdminScriptError& error);
