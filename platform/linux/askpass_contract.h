// What the askpass program tells the installer beside the password.

#pragma once

namespace platform::linux_ {

/// Begins what askpass says on standard error when it could not ask. Without it the
/// user has cancelled.
inline constexpr const char* kCannotAsk = "askpass: 无法询问密码";

}  // namespace platform::linux_
