#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>
#include <utility>

#include "cli/event_output.h"

namespace {

class TextOutput : public EventOutput {
 public:
  explicit TextOutput(std::string activity) : activity_(std::move(activity)) {}

  void phase(const std::string& /*name*/) override {}
  void status(const InstallationStatus& /*status*/) override {}

  void progress(double value) override {
    const std::string text = activity_ + " " + std::to_string(static_cast<int>(value * 100)) + "%";
    if (text == shown_) return;
    shown_ = text;
    if (!isTerminal_) {
      std::cout << text << std::endl;
      return;
    }
    constexpr int kCells = 40;
    const int filled = static_cast<int>(std::lround(value * kCells));
    std::cout << "\r\033[K[" << std::string(filled, '=') << std::string(kCells - filled, ' ')
              << "] " << text << std::flush;
    isLineOpen_ = true;
  }

  void say(const std::string& line) override {
    endLine();
    std::cout << line << std::endl;
  }

  void complain(const std::string& line) override {
    endLine();
    std::cerr << line << std::endl;
  }

  void finding(const Finding& finding) override {
    const bool isPass = finding.level == Finding::Level::pass;
    // Lines of a log follow the first line.
    const auto end = std::min(finding.text.find('\n'), finding.text.size());
    std::cout << mark(finding.level) << ' ' << finding.text.substr(0, end);
    if (isPass) std::cout << "（" << finding.next << "）";
    std::cout << finding.text.substr(end) << '\n';
    if (!isPass) std::cout << "       → " << finding.next << '\n';
    std::cout << std::flush;
  }

  void result(int /*exitStatus*/) override { endLine(); }

 private:
  std::string mark(Finding::Level level) const {
    const std::map<Finding::Level, std::pair<std::string, std::string>> marks = {
        {Finding::Level::pass, {"\033[32m", "[通过]"}},
        {Finding::Level::warn, {"\033[33m", "[警告]"}},
        {Finding::Level::fail, {"\033[31m", "[失败]"}}};
    const auto& [colour, text] = marks.at(level);
    return isTerminal_ && !std::getenv("NO_COLOR") ? colour + text + "\033[0m" : text;
  }

  void endLine() {
    if (std::exchange(isLineOpen_, false)) std::cout << std::endl;
  }

  std::string activity_;
  bool isTerminal_ = ::isatty(STDOUT_FILENO) == 1;
  bool isLineOpen_ = false;
  std::string shown_;
};

}  // namespace

std::unique_ptr<EventOutput> makeTextOutput(const std::string& command) {
  return std::make_unique<TextOutput>(command == "uninstall"  ? "正在移除"
                                      : command == "activate" ? "正在启用"
                                                              : "正在安装");
}
