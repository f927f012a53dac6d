#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "cli/event_output.h"

NLOHMANN_JSON_SERIALIZE_ENUM(Finding::Level, {{Finding::Level::pass, "pass"},
                                              {Finding::Level::warn, "warn"},
                                              {Finding::Level::fail, "fail"}})
NLOHMANN_JSON_SERIALIZE_ENUM(Finding::Scope,
                             {{Finding::Scope::machine, "machine"}, {Finding::Scope::user, "user"}})

namespace {

using Json = nlohmann::ordered_json;

// The compiler warns of a case that is not here.
const char* nameOf(ContentView::InstallationStatus::Case value) {
  using Case = ContentView::InstallationStatus::Case;
  switch (value) {
    case Case::failed:
      return "failed";
    case Case::notStarted:
      return "notStarted";
    case Case::installing:
      return "installing";
    case Case::waitingEnable:
      return "waitingEnable";
    case Case::success:
      return "success";
    case Case::needAdmin:
      return "needAdmin";
  }
  return "";
}

class JsonOutput : public EventOutput {
 public:
  explicit JsonOutput(std::string command) : command_(std::move(command)) {}

  void phase(const std::string& phaseName) override { line("phase", {{"phase", phaseName}}); }
  void progress(double value) override {
    if (std::exchange(progress_, value) != value) line("progress", {{"progress", value}});
  }
  void status(const InstallationStatus& status) override {
    Json event = {{"status", nameOf(status.value())}};
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
    line("message", {{"level", finding.level},
                     {"scope", finding.scope},
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
    // A path may hold bytes that are not text.
    std::cout << whole.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
  }

  std::string command_;
  std::optional<double> progress_;
};

}  // namespace

std::unique_ptr<EventOutput> makeJsonOutput(const std::string& command) {
  return std::make_unique<JsonOutput>(command);
}
