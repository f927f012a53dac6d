// Scripts that run with administrator rights, behind the system's password
// prompt.

#pragma once

#include <optional>
#include <string>

namespace platform {

/// What the scripting service says of a failure: NSAppleScriptErrorNumber and
/// NSAppleScriptErrorMessage, each absent if it says none.
struct AdminScriptError {
  std::optional<int> number;
  std::optional<std::string> message;
};

/// Number of the error when the user has dismissed the password prompt.
inline constexpr int kAdminScriptCancelled = -128;

/// Executes a script source of the form
///   do shell script "/bin/sh " & quoted form of POSIX path of "PATH"
///     with administrator privileges with prompt "PROMPT"
/// and blocks until the script has ended. Call it on a worker. Absent on
/// success. A non-zero exit of the script gives that number, with its standard
/// error as the message; a source of another form gives an error that says so.
std::optional<AdminScriptError> executeAdminScript(const std::string& source);

/// Asks the script or password prompt that is running to end, and waits for that
/// for three seconds at most. No script is started afterwards. False if it still runs:
/// macOS and root's rights keep this process from ending it. Main thread.
bool interruptAdminScript();

}  // namespace platform
