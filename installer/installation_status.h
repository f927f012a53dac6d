#pragma once

#include <string>
#include <utility>

/// Where an installation stands. Only `failed` carries data: the message shown
/// to the user.
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
