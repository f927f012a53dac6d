// Where an installation stands.
// clang-format off
//
// | status        | meaning                                   | entered from              | by                                                             |
// |---------------|-------------------------------------------|---------------------------|----------------------------------------------------------------|
// | notStarted    | nothing has been tried yet                | –                         | a new view                                                     |
// | installing    | the script runs, or its result is handled | any                       | startInstallation                                              |
// | needAdmin     | the password prompt was closed or refused | installing                | finishPrivilegedRun                                            |
// | failed        | the run ended in an error, with a message | installing                | startInstallation, finishPrivilegedRun, postInstallActivation  |
// | waitingEnable | installed; the user has to allow it       | installing                | postInstallActivation                                          |
// | success       | installed and enabled                     | installing, waitingEnable | finalizeInstallSuccess                                         |
//
// clang-format on
// Only a new run leaves needAdmin, failed and success, with two exceptions. The user
// may allow the input method before the delayed step to waitingEnable has run: the
// status is then success, becomes waitingEnable, and the next poll makes it success
// again. And a script may fail after it has written "finish": finishPrivilegedRun then
// sets failed or needAdmin from wherever the activation had come to.

#pragma once

#include <string>
#include <utility>

/// One of these statuses. Only `failed` carries data: the message for the user.
class InstallationStatus {
 public:
  enum Case { failed, notStarted, installing, waitingEnable, success, needAdmin };

  InstallationStatus(Case value) : case_(value) {}
  static InstallationStatus failure(std::string message) {
    InstallationStatus status(failed);
    status.message_ = std::move(message);
    return status;
  }

  bool is(Case value) const { return case_ == value; }
  Case value() const { return case_; }
  /// Empty unless failed.
  const std::string& message() const { return message_; }
  bool operator==(const InstallationStatus&) const = default;

 private:
  Case case_;
  std::string message_;
};
