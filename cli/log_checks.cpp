// The logs that installations leave.

#include <algorithm>
#include <chrono>
#include <fstream>

#include "cli/diagnosis.h"
#include "cli/log_tail_lines.h"
#include "installer/content_view.h"
#include "platform/file_owner.h"
#include "platform/file_root.h"

namespace {

namespace fs = std::filesystem;
using Level = Finding::Level;

constexpr std::size_t kShownLines = 3;

std::string ageText(const fs::path& file) {
  std::error_code error;
  const auto written = fs::last_write_time(file, error);
  if (error) return "时间不明";
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(fs::file_time_type::clock::now() - written)
          .count();
  if (seconds < 60) return "不到 1 分钟前";
  if (seconds < 3600) return std::to_string(seconds / 60) + " 分钟前";
  if (seconds < 86400) return std::to_string(seconds / 3600) + " 小时前";
  return std::to_string(seconds / 86400) + " 天前";
}

/// `judge` changes the finding of a log with these last lines.
void checkLog(Findings& findings, const char* path, const char* check, const std::string& name,
              void (*judge)(Finding&, const std::vector<std::string>& lines)) {
  const fs::path file = platform::onDisk(path);
  Finding finding{Level::pass, Finding::Scope::machine, check,
                  "",          Finding::kNothingToDo,   file.string()};
  std::error_code error;
  const auto status = fs::symlink_status(file, error);
  if (!fs::exists(status)) {
    finding.text = "没有" + name + "：还没有安装过，或已被系统清理";
  } else if (!fs::is_regular_file(status)) {
    finding.level = Level::warn;
    finding.text = name + "的位置上不是普通文件：" + file.string();
    finding.next = "删除它，否则安装过程没有记录";
  } else {
    const auto owner = platform::fileOwner(file);
    finding.text = name + " " + file.string() + "：" + ageText(file) + "，属于 " +
                   (owner ? owner->user : "不明用户");
    const auto lines = lastLines(file, kShownLines);
    finding.text += lines.empty() ? "，是空的" : "";
    for (const std::string& line : lines) finding.text += "\n         " + line;
    judge(finding, lines);
  }
  findings.push_back(std::move(finding));
}

void judgeInstallLog(Finding& finding, const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  const std::string& last = lines.back();
  if (last.starts_with("error")) {
    finding.level = Level::warn;
    finding.next = "上一次安装失败了，原因在最后一行；排除后运行 orvane-install install";
  } else if (last.find("finish") == std::string::npos) {
    finding.level = Level::warn;
    finding.next = "上一次安装没有做完；运行 orvane-install install 重新安装";
  }
}

void judgeUILog(Finding& finding, const std::vector<std::string>& lines) {
  const bool isFailed = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("管理员授权失败") != std::string::npos ||
           line.find("未找到 install.sh") != std::string::npos;
  });
  if (!isFailed) return;
  finding.level = Level::warn;
  finding.next = "上一次安装失败了，原因在最后几行；排除后运行 orvane-install install";
}

}  // namespace

std::vector<std::string> lastLines(const fs::path& file, std::size_t most) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(file, error))) return {};
  constexpr std::uintmax_t kMostBytes = 65536;
  const auto size = fs::file_size(file, error);
  if (error) return {};
  std::ifstream stream(file, std::ios::binary);
  std::string line;
  if (size > kMostBytes) {
    stream.seekg(static_cast<std::streamoff>(size - kMostBytes));
    std::getline(stream, line);  // most likely half a line
  }
  std::vector<std::string> lines;
  while (std::getline(stream, line))
    if (!line.empty()) lines.push_back(line);
  if (lines.size() > most) lines.erase(lines.begin(), lines.end() - static_cast<long>(most));
  return lines;
}

void checkLogs(Findings& findings) {
  checkLog(findings, kInstallLogPath, "installLog", "安装日志", judgeInstallLog);
  checkLog(findings, kUILogPath, "uiLog", "安装器日志", judgeUILog);
}
