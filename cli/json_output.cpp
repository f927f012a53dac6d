#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "cli/event_output.h"

namespace {

using Json = nlohmann::ordered_json;

std::string name(InstallationStatus::Case status) {
  switch (status) {
    case InstallationStatus::failed:
      return "failed";
    case InstallationStatus::notStarted:
      return "notStarted";
    case InstallationStatus::installing:
      return "installing";
    case InstallationStatus::waitingEnable:
      return "waitingEnable";
    case InstallationStatus::success:
      return "success";
    case InstallationStatus::needAdmin:
      return "needAdmin";
  }
  return {};
}

std::string name(Finding::Level level) {
  switch (level) {
    case Finding::Level::pass:
      return "pass";
    case Finding::Level::warn:
      return "warn";
    case Finding::Level::fail:
      return "fail";
  }
  return {};
}

class JsonOutput : public EventOutput {
 public:
  explicit JsonOutput(std::string command) : command_(std::move(command)) {}

  void phase(const std::string& phaseName) override { line("phase", {{"phase", phaseName}}); }
  void progress(double value) override {
    if (std::exchange(progress_, value) != value) line("progress", {{"progress", value}});
  }
  void status(const InstallationStatus& status) override {
    Json event = {{"status", name(status.value())}};
    if (!status.message().empty()) event["message"] = status.message();
    line("status", event);
  }
  void say(const std::string& text) override {
    line("message", {{"level", "info"}, {"text", text}});
  }
  void complain(const std::string& text) override {
    line("message", {{"level", "error"}, {"text", text}});
  }
  void finding(const Finding& finding) override {
    line("message", {{"level", name(finding.level)},
                     {"scope", finding.scope == Finding::Scope::machine ? "machine" : "user"},
                     {"check", finding.check},
                     {"text", finding.text},
                     {"next", finding.next},
                     {"value", finding.value}});
  }
  void result(int exitStatus) override {
    line("result", {{"command", command_}, {"exitStatus", exitStatus}});
  }

 private:
  static void line(const char* event, const Json& fields) {
    Json whole = {{"event", event}};
    whole.update(fields);
    // A path may hold bytes that are no text.
    std::cout << whole.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
  }

  std::string command_;
  std::optional<double> progress_;
};

}  // namespace

std::unique_ptr<EventOutput> makeJsonOutput(const std::string& command) {
  return std::make_unique<JsonOutput>(command);
}
