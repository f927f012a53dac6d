// What the installer and its askpass program tell each other beside the password.

#pragma once

namespace platform::linux_ {

/// Names the process that the password is for: the prompt ends with it.
inline constexpr const char* kInstallerProcessVariable = "ORVANE_INSTALLER_PROCESS";

/// Begins what askpass says on standard error when it had no way to ask, rather
/// than that the user has cancelled.
inline constexpr const char* kCannotAsk = "askpass: cannot ask for the password";

}  // namespace platform::linux_
