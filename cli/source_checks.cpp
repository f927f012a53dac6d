// What the input-source service and the preferences know of the input method.

#include "cli/diagnosis.h"
#include "cli/log_tail_lines.h"
#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "platform/file_root.h"
#include "platform/workspace.h"

namespace {

using Level = Finding::Level;
using Mode = TessalInstaller::InputMode;
using platform::InputSourceProperty;

constexpr auto kUser = Finding::Scope::user;
constexpr const char* kActivate = "运行 orvane-install activate";

/// One of two findings, by whether all is well.
void add(Findings& findings, bool isWell, const char* check, const std::string& well,
         const std::string& problem, const std::string& next, const std::string& value = "") {
  if (isWell)
    findings.push_back({Level::pass, kUser, check, well, Finding::kNothingToDo, value});
  else
    findings.push_back({Level::fail, kUser, check, problem, next, value});
}

bool isRegistered(const TessalInstaller& installer) {
  for (const auto& source : installer.allInputSources(/*includeAllInstalled=*/true))
    if (platform::getInputSourceProperty(source, InputSourceProperty::bundleID) ==
        platform::PropertyListValue(std::string(TessalInstaller::kBaseBundleID)))
      return true;
  return false;
}

/// Why it may not be enabled, by the last that the log tells of it. The log of a later
/// run may tell nothing.
std::string whyNotEnabled() {
  std::string why = "：还没有允许，或后来被拒绝、停用了";
  for (const std::string& line : lastLines(platform::onDisk(kUILogPath), 200)) {
    const auto tells = [&line](const char* words) { return line.find(words) != line.npos; };
    if (tells("fresh:enableBase="))
      why = "：已经请求过，但还没有允许，或被拒绝了";
    else if (tells("启用路径：覆盖安装") || (tells("TISSelectInputSource") && tells("ok=true")))
      why = "：曾经启用过，后来被拒绝或停用了，或启用它的是另一位用户";
  }
  return why;
}

void checkEnabled(Findings& findings, const TessalInstaller& installer) {
  const bool isBaseEnabled = installer.isBaseEnabledBestEffort();
  add(findings, isBaseEnabled, "enabled", "当前用户已启用输入法",
      "当前用户没有启用输入法" + whyNotEnabled(),
      std::string(kActivate) +
          "，在系统询问时允许；或在「系统设置 → 键盘 → 输入法」中添加「澄枫输入法」");
  if (!isBaseEnabled) return;

  const auto modes = installer.enabledModes();
  add(findings, !modes.empty(), "modeEnabled", "拼音模式已启用", "输入法已启用，但拼音模式没有启用",
      "在「系统设置 → 键盘 → 输入法」中移除「澄枫输入法」后重新添加");
  const auto mode = installer.inputModeSource(Mode::pinyin, /*includeAllInstalled=*/true);
  add(findings,
      mode && platform::getInputSourceProperty(mode, InputSourceProperty::isSelectCapable) ==
                  platform::PropertyListValue(true),
      "selectCapable", "拼音模式可以选择", "拼音模式不能选择", "注销后重新登录；仍不行则重新安装");
  if (installer.isSelected(Mode::pinyin))
    findings.push_back({Level::pass, kUser, "selected", "正在使用拼音模式"});
  else
    findings.push_back({Level::warn, kUser, "selected", "已启用，但正在使用别的输入法",
                        "在菜单栏的输入法菜单中选择「澄枫输入法」"});
}

void checkSettings(Findings& findings, const TessalInstaller& installer) {
  const auto bundled = installer.bundledSettingsApplication();
  const auto found = bundled ? bundled : installer.otherSettingsApplication();
  if (found)
    findings.push_back(
        {Level::pass, kUser, "settings",
         bundled ? "找到设置应用" : "找到设置应用，但不在程序包里：" + found->string(),
         Finding::kNothingToDo, found->string()});
  else
    findings.push_back({Level::warn, kUser, "settings", "没有设置应用 OrvaneSettings.app",
                        "运行 orvane-install install 重新安装"});
}

}  // namespace

void checkSources(Findings& findings) {
  const TessalInstaller installer;
  // Without the bundle there is nothing to know, and that it lacks is said already.
  if (!installer.isInstalled()) return;

  checkSettings(findings, installer);
  const auto known = platform::findApplication(
      platform::PropertyListValue(std::string(TessalInstaller::kBaseBundleID)));
  const bool isKnown = known == platform::onDisk(TessalInstaller::appDir());
  const bool isSourceKnown = isRegistered(installer);
  add(findings, isSourceKnown, "registered",
      isKnown ? "已登记为输入法，也已登记为应用" : "已登记为输入法",
      "系统的输入法服务不知道它：没有登记", kActivate);
  if (!isSourceKnown) return;

  const auto base = installer.keyboardInputMethodSource(/*includeAllInstalled=*/true);
  add(findings, base != nullptr, "baseSource", "找到输入法本身的输入源（按标识符）",
      "找不到输入法本身的输入源", "注销后重新登录；仍不行则重新安装");
  const auto mode = installer.inputModeSource(Mode::pinyin, /*includeAllInstalled=*/true);
  const auto modeID = TessalInstaller::rawValue(Mode::pinyin);
  const bool isByID =
      mode && platform::getInputSourceProperty(mode, InputSourceProperty::inputSourceID) ==
                  platform::PropertyListValue(modeID);
  add(findings, mode != nullptr, "modeSource",
      isByID ? "找到拼音模式的输入源（按输入源标识符）" : "找到拼音模式的输入源（按模式标识符）",
      "找不到拼音模式的输入源", "重新安装；若刚刚更新过，先注销再登录",
      isByID ? "inputSourceID"
      : mode ? "inputModeID"
             : "");
  checkEnabled(findings, installer);
}

void checkPreferences(Findings& findings) {
  const TessalInstaller installer;
  for (const auto& entries : installer.listedEntries(Mode::pinyin)) {
    Finding finding{
        Level::pass, kUser, entries.list, "", Finding::kNothingToDo, std::to_string(entries.own)};
    const std::string list = "偏好列表 " + entries.list;
    if (!entries.foreign.empty()) {
      finding.level = Level::fail;
      finding.text =
          list + "：有一条拼音模式的条目属于别的程序包「" + entries.foreign.front() + "」";
      finding.next =
          "在「系统设置 → 键盘 → "
          "输入法」中移除那一项，再重新添加「澄枫输入法」；看不到那一项时，运行 "
          "defaults -currentHost delete com.apple.HIToolbox " +
          entries.list + "，重新登录后再添加需要的输入法";
    } else if (entries.isDamaged) {
      finding.level = Level::fail;
      finding.text = list + "：有不是输入法条目的内容";
      finding.next =
          "在「系统设置 → 键盘 → 输入法」中移除并重新添加任意一个输入法，让系统重写这个列表";
    } else if (entries.own > 0 && !installer.isInstalled()) {
      finding.level = Level::warn;
      finding.text = list + "：输入法已不在，条目还在";
      finding.next = "运行 orvane-install uninstall 清理，或重新安装";
    } else if (entries.own > 1) {
      finding.level = Level::warn;
      finding.text = list + "：同一条目出现 " + std::to_string(entries.own) + " 次";
      finding.next = "在「系统设置 → 键盘 → 输入法」中移除「澄枫输入法」后重新添加";
    } else {
      finding.text = list + (entries.own == 1 ? "：有拼音模式的条目" : "：没有条目，不影响使用");
    }
    findings.push_back(std::move(finding));
  }
}
