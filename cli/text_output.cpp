#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "cli/event_output.h"

namespace {

/// Whether a terminal would turn the direction of the text, or break the line.
bool isFormat(char32_t character) {
  return character == 0x061c || character == 0x200e || character == 0x200f ||
         (character >= 0x2028 && character <= 0x202e) ||
         (character >= 0x2066 && character <= 0x2069);
}

/// The text with pictures in the place of control characters: others may have
/// written it, and a terminal would obey it.
std::string visible(const std::string& text) {
  const std::string valid = utf8::replace_invalid(text);
  std::string shown;
  for (auto at = valid.begin(); at != valid.end();) {
    auto character = utf8::next(at, valid.end());
    if (character < 0x20 && character != '\n' && character != '\t')
      character += 0x2400;
    else if ((character >= 0x7f && character < 0xa0) || isFormat(character))
      character = 0xfffd;
    utf8::append(character, std::back_inserter(shown));
  }
  return shown;
}

/// The value of this environment variable; empty if it is not set.
std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// The width of a terminal that can draw a line anew; 0 if standard output is not one.
int terminalColumns() {
  const std::string kind = environmentVariable("TERM");
  if (::isatty(STDOUT_FILENO) != 1 || kind.empty() || kind == "dumb") return 0;
  winsize size{};
  constexpr int kUsual = 80;
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

class TextOutput : public EventOutput {
 public:
  /// Without an activity no progress is shown.
  explicit TextOutput(std::string activity) : activity_(std::move(activity)) {}

  void phase(const std::string& /*name*/) override {}
  void status(const InstallationStatus& /*status*/) override {}

  void progress(double value) override {
    const std::string text = activity_ + " " + std::to_string(static_cast<int>(value * 100)) + "%";
    if (activity_.empty() || text == shown_) return;
    shown_ = text;
    const int columns = terminalColumns();
    // A password prompt follows the first one, and begins a line.
    if (columns == 0 || value == 0.0) {
      std::cout << text << std::endl;
      return;
    }
    // Beside the bar there are its ends, a blank and the text. The last column stays free.
    constexpr int kOthers = 17;
    const int cells = std::clamp(columns - kOthers, 0, 40);
    const int filled = static_cast<int>(std::lround(value * cells));
    std::cout << "\r\033[K";
    if (cells > 0)
      std::cout << '[' << std::string(filled, '=') << std::string(cells - filled, ' ') << "] ";
    std::cout << text << std::flush;
    isLineOpen_ = true;
  }

  void say(const std::string& line) override {
    endLine();
    std::cout << visible(line) << std::endl;
  }

  void complain(const std::string& line) override {
    endLine();
    std::cerr << visible(line) << std::endl;
  }

  void finding(const Finding& finding) override {
    if (!told_.insert(finding.text).second) return;  // of several with one cause
    // Only a mark begins a line: the text may hold what others have written.
    std::string text = visible(finding.text);
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;) text.insert(++at, 9, ' ');
    std::cout << mark(finding.level) << ' ' << text << '\n';
    if (finding.level != Finding::Level::pass)
      std::cout << "       → " << visible(finding.next) << '\n';
    std::cout << std::flush;
  }

  void result(int /*exitStatus*/) override { endLine(); }

 private:
  static std::string mark(Finding::Level level) {
    const std::map<Finding::Level, std::pair<std::string, std::string>> marks = {
        {Finding::Level::pass, {"\033[32m", "[通过]"}},
        {Finding::Level::warn, {"\033[33m", "[警告]"}},
        {Finding::Level::fail, {"\033[31m", "[失败]"}}};
    const auto& [colour, text] = marks.at(level);
    return terminalColumns() > 0 && environmentVariable("NO_COLOR").empty()
               ? colour + text + "\033[0m"
               : text;
  }

  void endLine() {
    if (std::exchange(isLineOpen_, false)) std::cout << std::endl;
  }

  std::string activity_;
  bool isLineOpen_ = false;
  std::set<std::string> told_;
  std::string shown_;
};

}  // namespace

std::unique_ptr<EventOutput> makeTextOutput(const std::string& command) {
  // An activation waits for the user for most of its time, and has no steps to show.
  return std::make_unique<TextOutput>(command == "uninstall"  ? "正在移除"
                                      : command == "activate" ? ""
                                                              : "正在安装");
}
