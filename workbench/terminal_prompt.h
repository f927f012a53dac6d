// The password prompt of a terminal without a display.

#pragma once

#include <optional>
#include <string>

/// Asks in the controlling terminal, without echo, and prints the password with a
/// line end on standard output. Whether there was one: not if the user cancels, or
/// once `installer` can be read, a descriptor or -1. Takes the foreground of the
/// terminal from the group `foreground` or keeps it; leaves the terminal as it was.
/// Absent, with a reason, if there is no terminal to ask in.
std::optional<bool> askInTerminal(const std::string& prompt, int installer, int foreground,
                                  std::string& reason);
