// The one form of script source that runs with administrator rights:
//   do shell script "/bin/sh " & quoted form of POSIX path of "PATH"
//     with administrator privileges with prompt "PROMPT"
// on one line.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/admin_script.h"

namespace platform {

struct AdminScript {
  std::string path;
  std::string prompt;
};

/// The source for this script. Path and prompt go in as they are: a double quote
/// in either breaks the source, which is accepted.
std::string composeAdminScriptSource(const AdminScript& script);

/// The script of a source; absent if the source has another form.
std::optional<AdminScript> parseAdminScriptSource(std::string_view source);

/// What every platform answers to a source of another form.
AdminScriptError adminScriptSyntaxError(const std::string& source);

}  // namespace platform
