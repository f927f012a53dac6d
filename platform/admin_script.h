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

/// Ends the script that is being executed, within a second and as far as the
/// system lets this process do so: a pending password prompt is dismissed, and a
/// script is sent SIGTERM; one of the same user is killed if it does not heed that.
/// None is started any more. False if a script with higher rights runs on. Main thread.
bool interruptAdminScript();

}  // namespace platform
