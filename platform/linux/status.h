// Statuses of the system beside those of the contract.

#pragma once

#include "platform/text_input_sources.h"

namespace platform::linux_ {

inline constexpr Status kInputOutputError = -36;
inline constexpr Status kFileNotFound = -43;

}  // namespace platform::linux_
