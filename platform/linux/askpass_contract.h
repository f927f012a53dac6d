// What the askpass program tells the installer beside the password.

#pragma once

namespace platform::linux_ {

/// Begins what askpass says on standard error when it could not ask. Without it the
/// user has cancelled.
inline constexpr const char* kCannotAsk = "askpass: cannot ask for the password";

}  // namespace platform::linux_
