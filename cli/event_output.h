// What a command tells while it runs, for a person or as lines of JSON.

#pragma once

#include <memory>
#include <string>

#include "cli/diagnosis.h"
#include "installer/content_view.h"

/// Takes the events of one command in their order. Main thread.
class EventOutput {
 public:
  using InstallationStatus = ContentView::InstallationStatus;

  virtual ~EventOutput() = default;
  /// What the command does from now on: "script", "activation", "waiting",
  /// "cleanup" or "diagnosis".
  virtual void phase(const std::string& name) = 0;
  /// 0.0 to 1.0.
  virtual void progress(double value) = 0;
  virtual void status(const InstallationStatus& status) = 0;
  virtual void say(const std::string& line) = 0;
  /// Something went wrong.
  virtual void complain(const std::string& line) = 0;
  virtual void finding(const Finding& finding) = 0;
  /// The last event.
  virtual void result(int exitStatus) = 0;
};

/// A bar that is drawn anew on a terminal, else plain lines; what went wrong goes
/// to standard error.
std::unique_ptr<EventOutput> makeTextOutput(const std::string& command);

/// One JSON object per line on standard output, with an "event" in each. The form is
/// described in the manual page, and kept.
std::unique_ptr<EventOutput> makeJsonOutput(const std::string& command);
