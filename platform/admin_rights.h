// Whether this user can get administrator rights at all.

#pragma once

namespace platform {

enum class AdminRights {
  held,         ///< This process has them.
  askable,      ///< The user is an administrator: the password prompt gives them.
  ofAnother,    ///< The prompt can be shown, and wants an administrator's password.
  unavailable,  ///< There is nothing here that could ask for a password.
};

/// Found out without asking the user for anything. Any thread.
AdminRights adminRights();

}  // namespace platform
