#include "cli/diagnosis.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "cli/installed_files.h"
#include "inputsource/removal.h"
#include "installer/log_files.h"
#include "platform/accounts.h"
#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

namespace {

namespace fs = std::filesystem;
using Level = Finding::Level;
using Scope = Finding::Scope;
using platform::dictionaryIn;
using platform::InputSourceProperty;
using platform::PropertyListDictionary;
using platform::textIn;
using Lines = std::vector<std::string>;

constexpr const char* kReinstall = "运行 orvane-install install 重新安装";
constexpr const char* kActivate = "运行 orvane-install activate";
constexpr const char* kLogInAgain = "注销后重新登录；仍不行则重新安装";
constexpr const char* kAddAgain = "在「系统设置 → 键盘 → 输入法」中移除「澄枫输入法」后重新添加";

/// Whether there is the source, and its property has this value.
bool hasProperty(const platform::InputSource& source, InputSourceProperty property,
                 const platform::PropertyListValue& value) {
  return source && platform::getInputSourceProperty(source, property) == value;
}

std::string versionIn(const PropertyListDictionary& info) {
  return textIn(info, "CFBundleShortVersionString").value_or("");
}

std::string broughtVersion() {
  return platform::bundleInfoText("OrvanePayloadVersion").value_or("");
}

/// The numbers of a version such as "1.10.2", without zeros at its end.
std::vector<int> numbersOf(std::string version) {
  std::replace(version.begin(), version.end(), '.', ' ');
  std::istringstream stream(version);
  std::vector<int> numbers{std::istream_iterator<int>(stream), {}};
  while (!numbers.empty() && numbers.back() == 0) numbers.pop_back();
  return numbers;
}

/// What is wrong with the program of the bundle; empty if nothing is.
std::string programProblem(const fs::path& program) {
  std::error_code error;
  const auto status = fs::status(program, error);
  if (!fs::is_regular_file(status)) return "程序缺失：" + program.string();
  if ((status.permissions() & fs::perms::others_exec) == fs::perms::none)
    return "不是所有用户都能运行程序：" + program.string();
  std::string start(4, '\0');
  std::ifstream(program, std::ios::binary).read(start.data(), 4);
  // Mach-O for one processor, for several, or a script.
  const bool isProgram =
      start == "\xcf\xfa\xed\xfe" || start == "\xca\xfe\xba\xbe" || start.starts_with("#!");
  return isProgram ? "" : "程序损坏：" + program.string();
}

/// What is wrong with the owner or the modes of one file; empty if nothing is.
std::string accessProblem(const fs::path& path) {
  using fs::perms;
  std::error_code error;
  const auto status = fs::symlink_status(path, error);
  if (error) return "无法查看";
  if (fs::is_symlink(status)) return "";
  const auto allows = [&](perms bits) { return (status.permissions() & bits) != perms::none; };
  if (allows(perms::others_write | perms::group_write)) return "其他用户可以修改";
  if (!allows(perms::others_read) || (fs::is_directory(status) && !allows(perms::others_exec)))
    return "其他用户不能读取";
  const std::string owner = platform::ownerAndGroup(path);
  return owner.starts_with("root:") ? "" : "属于 " + owner + "，应属于 root";
}

/// The first such problem in a folder, behind its path; empty if there is none.
std::string accessProblemIn(const fs::path& folder) {
  std::string problem = accessProblem(folder);
  if (!problem.empty()) return folder.string() + " " + problem;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error))
    if (problem = accessProblem(entry->path()); !problem.empty())
      return entry->path().string() + " " + problem;
  return error ? folder.string() + " 无法查看：" + error.message() : "";
}

/// The lines of a text that are not empty.
Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    if (!line.empty()) lines.push_back(line);
  return lines;
}

std::string ageText(std::chrono::seconds age) {
  using namespace std::chrono_literals;
  if (age < 2h) return std::to_string(age / 1min) + " 分钟前";
  return age < 48h ? std::to_string(age / 1h) + " 小时前" : std::to_string(age / 24h) + " 天前";
}

/// What to do about an install log with these last lines; empty if they tell of no fault.
std::string adviceOnInstallLog(const Lines& lines) {
  if (lines.empty() || lines.back().find(kFinish) != std::string::npos) return "";
  return lines.back().starts_with(kError)
             ? "上一次安装失败了，原因在最后一行；排除后运行 orvane-install install"
             : "上一次安装没有做完；运行 orvane-install install 重新安装";
}

std::string adviceOnUILog(const Lines& lines) {
  const bool isFailed = std::ranges::any_of(lines, [](const std::string& line) {
    return line.find(kScriptFailed) != line.npos || line.find(kNoScript) != line.npos;
  });
  return isFailed ? "上一次安装失败了，原因在最后几行；排除后运行 orvane-install install" : "";
}

/// Why the input method may not be enabled, by the last that the log tells of it.
std::string whyNotEnabled() {
  std::string why = "：还没有允许，或后来被拒绝、停用了";
  const auto end = platform::readEndOfLogFile(platform::onDisk(kUILogPath));
  for (const std::string& line : linesOf(end ? end->text : "")) {
    const auto tells = [&line](const char* phrase) { return line.find(phrase) != line.npos; };
    if (tells(kEnableRequested))
      why = "：已经请求过，但还没有允许，或被拒绝了";
    else if (tells(kOverwriteInstall) || tells(kModeSelected))
      why = "：曾经启用过，后来被拒绝或停用了，或启用它的是另一位用户";
  }
  return why;
}

std::string identifierProblem(const std::string& identifier) {
  const std::string expected(TessalInstaller::baseBundleID);
  if (identifier.empty()) return "Info.plist 里没有标识符（CFBundleIdentifier）";
  if (("." + identifier + ".").find(".inputmethod.") == std::string::npos)
    return "标识符 " + identifier + " 缺少 inputmethod 一段，系统不会登记它";
  return identifier == expected ? "" : "标识符是 " + identifier + "，应为 " + expected;
}

std::string versionProblem(const std::string& version) {
  if (version.empty()) return "Info.plist 里没有版本号";
  const std::string brought = broughtVersion();
  if (brought.empty() || version == brought || !newerVersionNotice().empty()) return "";
  return "已安装的版本是 " + version + "，安装器里的是 " + brought;
}

/// What is looked at: a row for each check.
class Diagnosis {
 public:
  std::vector<Finding> run(bool machineOnly) {
    const bool isThere = bundle();
    if (isThere) companions();
    remains();
    // A reason that is in both logs is told once.
    const bool isTold = log("installLog", "安装日志", kInstallLogPath, adviceOnInstallLog);
    log("uiLog", "安装器日志", kUILogPath, isTold ? nullptr : adviceOnUILog);
    if (machineOnly) return findings_;
    scope_ = Scope::user;
    if (isThere) sources();
    // Of a bundle with another identifier all entries would seem to be another's.
    if (entryBundleID() == TessalInstaller::baseBundleID) lists();
    row({.check = "rights",
         .wrong = platform::isAdministrator() ? "" : "当前用户不是管理员",
         .next = "安装时输入一位管理员的用户名和密码，或请管理员安装；启用不需要管理员",
         .well = "可以取得管理员权限：安装时输入密码即可",
         .level = Level::warn});
    return findings_;
  }

 private:
  struct Row {
    std::string check;
    /// Empty if nothing is wrong.
    std::string wrong = {};
    /// What to do about it.
    std::string next = kReinstall;
    /// What is said if nothing is wrong; empty for nothing.
    std::string well = {};
    std::string value = {};
    /// Of what is wrong.
    Level level = Level::fail;
  };

  /// Whether nothing is wrong.
  bool row(const Row& row) {
    if (!row.wrong.empty())
      findings_.push_back({row.level, scope_, row.check, row.wrong, row.next, row.value});
    else if (!row.well.empty())
      findings_.push_back(
          {Level::pass, scope_, row.check, row.well, Finding::nothingToDo, row.value});
    return row.wrong.empty();
  }

  /// Whether there is a bundle; what else is wrong with it does not matter here.
  bool bundle() {
    const fs::path place = platform::onDisk(TessalInstaller::appDir());
    if (!installer_.isInstalled())
      return row({.check = "bundle",
                  .wrong = "没有安装：" + place.string() + " 不存在",
                  .next = "运行 orvane-install install 安装"});
    std::error_code error;
    const auto status = fs::symlink_status(place, error);
    if (!fs::is_directory(status))
      return row(
          {.check = "bundle",
           .wrong = place.string() + (fs::is_symlink(status) ? " 是链接，" : " ") + "不是程序包"});
    row({.check = "bundle", .well = "已安装：" + place.string(), .value = place.string()});

    const auto info = installer_.installedInfo();
    if (row({.check = "info", .wrong = info ? "" : "Info.plist 缺失或损坏"})) content(place, *info);
    const std::string owner = platform::ownerAndGroup(place);
    const std::string problem = accessProblemIn(place);
    row({.check = "access",
         .wrong = problem.empty() ? "" : "权限不对：" + problem,
         .well = "属于 " + owner + "，所有用户可读，只有所有者可以修改",
         .value = owner});
    return true;
  }

  void content(const fs::path& place, const PropertyListDictionary& info) {
    const std::string identifier = textIn(info, "CFBundleIdentifier").value_or("");
    isIdentifierWell_ = row({.check = "identifier",
                             .wrong = identifierProblem(identifier),
                             .well = "标识符正确：" + identifier,
                             .value = identifier});

    const std::string version = versionIn(info);
    const std::string newer = newerVersionNotice();
    row({.check = "version",
         .wrong = versionProblem(version),
         .next = version.empty() ? kReinstall : "运行 orvane-install install 换成安装器里的版本",
         .well = newer.empty() ? "版本 " + version : newer,
         .value = version,
         .level = Level::warn});

    const std::string mode = TessalInstaller::rawValue(kDefaultMode);
    const bool hasMode = dictionaryIn(
        dictionaryIn(dictionaryIn(&info, "ComponentInputModeDict"), "tsInputModeListKey"), mode);
    isModeWell_ = row(
        {.check = "mode",
         .wrong = hasMode ? "" : "Info.plist 里没有拼音模式 " + mode + "，输入法列表里不会出现拼音",
         .well = "Info.plist 里有拼音模式",
         .value = hasMode ? mode : ""});

    const fs::path program =
        place / "Contents" / "MacOS" / textIn(info, "CFBundleExecutable").value_or("Orvane");
    row({.check = "program", .wrong = programProblem(program), .well = "程序可以运行"});
  }

  /// The applications that the archive brings beside the input method.
  void companions() {
    for (const fs::path& bundle : installedBundles()) {
      const fs::path place = platform::onDisk(bundle);
      std::error_code error;
      if (platform::bundleResource(bundle.stem(), "zip") && !fs::exists(place, error))
        row({.check = "companions",
             .wrong = "缺少随它安装的应用：" + place.string(),
             .value = place.string(),
             .level = Level::warn});
    }
  }

  void remains() {
    std::string left;
    std::string damaged;
    for (const fs::path& path : leftovers()) {
      std::string& list = path.extension() == ".staging" ? damaged : left;
      list += (list.empty() ? "" : "、") + path.string();
    }
    if (row({.check = "leftovers",
             .wrong = damaged.empty() ? "" : "上一次安装或移除被中断，留下了：" + damaged,
             .next = "确认没有安装正在进行，然后运行 orvane-install install，它会先清理再安装",
             .value = damaged}))
      row({.check = "leftovers",
           .wrong = left.empty() ? "" : "旧版本有一部分删不掉，留下了：" + left,
           .next = "重新启动后再运行一次 orvane-install install",
           .well = "没有被中断的安装留下的文件",
           .value = left,
           .level = Level::warn});
  }

  /// Whether there is advice on its last lines. Without such advice they are not shown.
  bool log(const char* check, const std::string& name, const char* path,
           std::string (*advice)(const Lines&)) {
    const fs::path file = platform::onDisk(path);
    std::error_code error;
    const auto status = fs::symlink_status(file, error);
    const auto tell = [&](const std::string& text, const std::string& next, bool isReason = false) {
      const bool isWell = row({.check = check,
                               .wrong = next.empty() ? "" : text,
                               .next = next,
                               .well = text,
                               .value = file.string(),
                               .level = Level::warn});
      // Why the latest installation has failed comes before what is missing for that.
      if (!isWell) std::rotate(findings_.begin(), findings_.end() - 1, findings_.end());
      return isReason && !isWell;
    };
    if (!fs::exists(status)) return tell("没有" + name + "：还没有安装过，或已被系统清理", "");
    std::string owner = platform::ownerAndGroup(file);
    owner.erase(std::min(owner.find(':'), owner.size()));
    const std::string whose = name + " " + file.string() + " 属于 " + owner;
    const auto end = platform::readEndOfLogFile(file);
    if (!end && fs::is_regular_file(status) && fs::hard_link_count(file, error) == 1)
      return tell(whose + "，当前用户的安装不会写入它", "请 " + owner + " 删除它");
    if (!end)
      return tell(name + "的位置上不是普通文件：" + file.string(), "删除它，否则安装过程没有记录");

    std::string text = whose + "，" + ageText(end->age);
    if (!advice) return tell(text, "");
    auto lines = linesOf(end->text);
    constexpr std::size_t kShown = 3;
    if (lines.size() > kShown) lines.erase(lines.begin(), lines.end() - kShown);
    if (lines.empty()) text += "，是空的";
    for (const std::string& line : lines) text += "\n" + line;
    return tell(text, advice(lines), /*isReason=*/true);
  }

  /// What the input-source service knows, and this user's answer.
  void sources() {
    const auto bundled = installer_.bundledSettingsApplication();
    const auto settings = bundled ? bundled : installer_.otherSettingsApplication();
    const std::string place = settings.value_or("").string();
    row({.check = "settings",
         .wrong = settings ? "" : "没有设置应用 OrvaneSettings.app",
         .well = bundled ? "找到设置应用" : "找到设置应用，但不在程序包里：" + place,
         .value = place,
         .level = Level::warn});
    if (!isIdentifierWell_) return;

    const auto all = installer_.allInputSources(/*includeAllInstalled=*/true);
    const bool isRegistered = std::ranges::any_of(all, [](const platform::InputSource& source) {
      return hasProperty(source, InputSourceProperty::bundleID,
                         std::string(TessalInstaller::baseBundleID));
    });
    if (!row({.check = "registered",
              .wrong = isRegistered ? "" : "系统的输入法服务不知道它：没有登记",
              .next = kActivate,
              .well = "已登记为输入法"}))
      return;

    const auto base = installer_.keyboardInputMethodSource(/*includeAllInstalled=*/true);
    const bool isBaseWell = row({.check = "baseSource",
                                 .wrong = base ? "" : "找不到输入法本身的输入源",
                                 .next = kLogInAgain,
                                 .well = "找到输入法本身的输入源（按标识符）"});
    const auto mode = installer_.inputModeSource(kDefaultMode, /*includeAllInstalled=*/true);
    isModeWell_ = isModeWell_ && row({.check = "modeSource",
                                      .wrong = mode ? "" : "找不到拼音模式的输入源",
                                      .next = "重新安装；若刚刚更新过，先注销再登录",
                                      .well = "找到拼音模式的输入源"});
    if (isBaseWell && enabled() && isModeWell_) modeState(mode);
  }

  bool enabled() {
    const bool isEnabled = installer_.isBaseEnabledBestEffort();
    return row({.check = "enabled",
                .wrong = isEnabled ? "" : "当前用户没有启用输入法" + whyNotEnabled(),
                .next = std::string(kActivate) +
                        "，在系统询问时允许；或在「系统设置 → 键盘 → 输入法」中添加「澄枫输入法」",
                .well = "当前用户已启用输入法"});
  }

  void modeState(const platform::InputSource& mode) {
    const bool isEnabled =
        row({.check = "modeEnabled",
             .wrong = installer_.enabledModes().empty() ? "输入法已启用，但拼音模式没有启用" : "",
             .next = kAddAgain,
             .well = "拼音模式已启用"});
    const bool isCapable = hasProperty(mode, InputSourceProperty::isSelectCapable, true);
    if (!row({.check = "selectCapable",
              .wrong = isCapable ? "" : "拼音模式无法选择",
              .next = kLogInAgain,
              .well = "拼音模式可以选择"}) ||
        !isEnabled)
      return;
    const bool isSelected = installer_.isSelected(kDefaultMode);
    row({.check = "selected",
         .well = isSelected ? "正在使用拼音模式" : "已启用，但正在使用别的输入法"});
  }

  /// The three lists in the user's preferences. Those of which the same is said are named
  /// together.
  void lists() {
    std::vector<Row> rows;
    std::map<std::string, std::string> names;  // by what is said
    for (const ListedEntries& entries : listedEntries(kDefaultMode)) {
      rows.push_back(list(entries));
      std::string& joined = names[rows.back().wrong + rows.back().well];
      joined += (joined.empty() ? "偏好列表 " : "、") + entries.list;
    }
    for (Row& each : rows) {
      std::string& said = each.wrong.empty() ? each.well : each.wrong;
      said.insert(0, names[said] + "：");
      row(each);
    }
  }

  Row list(const ListedEntries& entries) {
    const std::string count = std::to_string(entries.own);
    Row found{.check = entries.list, .value = count};
    if (!entries.foreign.empty()) {
      found.wrong = "有一条拼音模式的条目属于别的程序包「" + entries.foreign.front() + "」";
      found.next =
          "在「系统设置 → 键盘 → "
          "输入法」中移除那一项，再重新添加「澄枫输入法」；看不到那一项时，运行 "
          "defaults -currentHost delete com.apple.HIToolbox 列表名（上面的每个列表），"
          "重新登录后再添加需要的输入法";
    } else if (entries.isDamaged) {
      found.wrong = "无法读取，或有不是输入法条目的内容";
      found.next =
          "在「系统设置 → 键盘 → 输入法」中移除并重新添加任意一个输入法，让系统重写这个列表";
    } else if (entries.own > 0 && !installer_.isInstalled()) {
      found.wrong = "输入法已不在，条目还在";
      found.next = "运行 orvane-install uninstall 清理，或重新安装";
      found.level = Level::warn;
    } else if (entries.own > 1) {
      found.wrong = "同一条目出现 " + count + " 次";
      found.next = kAddAgain;
      found.level = Level::warn;
    } else {
      found.well = entries.own == 1 ? "有拼音模式的条目" : "没有条目，不影响使用";
    }
    return found;
  }

  TessalInstaller installer_;
  Scope scope_ = Scope::machine;
  std::vector<Finding> findings_;
  bool isIdentifierWell_ = false;
  bool isModeWell_ = false;
};

}  // namespace

std::string newerVersionNotice() {
  const auto info = TessalInstaller().installedInfo();
  const std::string installed = info ? versionIn(*info) : "";
  const std::string brought = broughtVersion();
  if (brought.empty() || numbersOf(installed) <= numbersOf(brought)) return "";
  return "已安装的版本 " + installed + " 比安装器里的 " + brought + " 新";
}

std::vector<Finding> diagnose(bool machineOnly) {
  return Diagnosis().run(machineOnly);
}
