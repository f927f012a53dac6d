// The bundle on disk.

#include <filesystem>
#include <optional>

#include "cli/diagnosis.h"
#include "inputsource/tessal_installer.h"
#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/file_owner.h"
#include "platform/file_root.h"

namespace {

namespace fs = std::filesystem;
using Level = Finding::Level;
using Scope = Finding::Scope;
using platform::dictionaryIn;
using platform::PropertyListDictionary;
using platform::textIn;

constexpr const char* kReinstall = "运行 orvane-install install 重新安装";

void checkIdentifier(Findings& findings, const PropertyListDictionary& info) {
  const std::string identifier = textIn(info, "CFBundleIdentifier").value_or("");
  Finding finding{Level::fail, Scope::machine, "identifier", "", kReinstall, identifier};
  if (identifier.empty()) {
    finding.text = "Info.plist 里没有标识符（CFBundleIdentifier）";
  } else if (("." + identifier + ".").find(".inputmethod.") == std::string::npos) {
    finding.text = "标识符 " + identifier + " 缺少 inputmethod 一段，系统不会登记它";
  } else if (identifier != TessalInstaller::kBaseBundleID) {
    finding.text =
        "标识符是 " + identifier + "，应为 " + std::string(TessalInstaller::kBaseBundleID);
  } else {
    finding.level = Level::pass;
    finding.text = "标识符正确：" + identifier;
    finding.next = Finding::kNothingToDo;
  }
  findings.push_back(std::move(finding));
}

void checkVersion(Findings& findings, const PropertyListDictionary& info) {
  const auto version = textIn(info, "CFBundleShortVersionString");
  const auto ownValue = platform::bundleInfoValue("OrvanePayloadVersion");
  const auto* own = ownValue ? ownValue->as<std::string>() : nullptr;
  Finding finding{Level::pass, Scope::machine,        "version",
                  "",          Finding::kNothingToDo, version.value_or("")};
  if (!version) {
    finding.level = Level::warn;
    finding.text = "Info.plist 里没有版本号";
    finding.next = kReinstall;
  } else if (own && !own->empty() && *own != *version) {
    finding.level = Level::warn;
    finding.text = "已安装的版本是 " + *version + "，安装器里的是 " + *own;
    finding.next = "运行 orvane-install install 换成安装器里的版本";
  } else {
    finding.text = "版本 " + *version;
  }
  findings.push_back(std::move(finding));
}

void checkMode(Findings& findings, const PropertyListDictionary& info) {
  const auto* modes =
      dictionaryIn(dictionaryIn(&info, "ComponentInputModeDict"), "tsInputModeListKey");
  const std::string mode = TessalInstaller::rawValue(TessalInstaller::InputMode::pinyin);
  if (dictionaryIn(modes, mode))
    findings.push_back({Level::pass, Scope::machine, "mode", "Info.plist 里有拼音模式",
                        Finding::kNothingToDo, mode});
  else
    findings.push_back({Level::fail, Scope::machine, "mode",
                        "Info.plist 里没有拼音模式 " + mode + "，输入法列表里不会出现拼音",
                        kReinstall});
}

void checkProgram(Findings& findings, const fs::path& bundle, const PropertyListDictionary& info) {
  const std::string name = textIn(info, "CFBundleExecutable").value_or("Orvane");
  std::error_code error;
  const fs::path program = bundle / "Contents" / "MacOS" / name;
  const auto status = fs::status(program, error);
  using fs::perms;
  const bool isRunnable =
      fs::is_regular_file(status) && (status.permissions() & perms::others_exec) != perms::none;
  if (isRunnable)
    findings.push_back({Level::pass, Scope::machine, "program", "程序可以运行"});
  else
    findings.push_back({Level::fail, Scope::machine, "program",
                        "程序缺失，或不是所有用户都能运行：" + program.string(), kReinstall});
}

/// What is wrong with the owner or the modes of one file; empty if nothing is.
std::string accessProblem(const fs::path& path, bool isSystemPlace) {
  std::error_code error;
  const auto status = fs::symlink_status(path, error);
  if (error) return "无法查看";
  if (fs::is_symlink(status)) return "";
  const auto has = [&](fs::perms bits) { return (status.permissions() & bits) == bits; };
  if (has(fs::perms::others_write) || has(fs::perms::group_write)) return "其他用户可以修改";
  if (!has(fs::perms::others_read) || (fs::is_directory(status) && !has(fs::perms::others_exec)))
    return "其他用户不能读取";
  // Below a root of its own everything belongs to the user.
  if (!isSystemPlace) return "";
  const auto owner = platform::fileOwner(path);
  return owner && !owner->isSuperuser ? "属于 " + owner->user + "，应属于 root" : "";
}

void checkAccess(Findings& findings, const fs::path& bundle) {
  const bool isSystemPlace = platform::onDisk("/") == "/";
  fs::path worst = bundle;
  std::string problem = accessProblem(bundle, isSystemPlace);
  std::error_code error;
  for (fs::recursive_directory_iterator entry(bundle, error), end;
       problem.empty() && !error && entry != end; entry.increment(error))
    if (problem = accessProblem(entry->path(), isSystemPlace); !problem.empty())
      worst = entry->path();
  if (problem.empty() && error) problem = "无法查看：" + error.message();

  const auto owner = platform::fileOwner(bundle);
  const std::string name = owner ? owner->user + ":" + owner->group : "";
  if (problem.empty())
    findings.push_back({Level::pass, Scope::machine, "access",
                        "属于 " + name + "，所有用户可读，只有所有者可以修改",
                        Finding::kNothingToDo, name});
  else
    findings.push_back({Level::fail, Scope::machine, "access",
                        "权限不对：" + worst.string() + " " + problem, kReinstall, name});
}

}  // namespace

void checkBundle(Findings& findings) {
  const fs::path bundle = platform::onDisk(TessalInstaller::appDir());
  const TessalInstaller installer;
  if (!installer.isInstalled()) {
    findings.push_back({Level::fail, Scope::machine, "bundle",
                        "没有安装：" + bundle.string() + " 不存在",
                        "运行 orvane-install install 安装"});
    return;
  }
  std::error_code error;
  if (fs::is_symlink(fs::symlink_status(bundle, error)) || !fs::is_directory(bundle, error)) {
    findings.push_back(
        {Level::fail, Scope::machine, "bundle", bundle.string() + " 不是程序包", kReinstall});
    return;
  }
  findings.push_back({Level::pass, Scope::machine, "bundle", "已安装：" + bundle.string(),
                      Finding::kNothingToDo, bundle.string()});

  const auto info = installer.installedInfo();
  if (!info) {
    findings.push_back({Level::fail, Scope::machine, "info", "Info.plist 缺失或损坏", kReinstall});
  } else {
    checkIdentifier(findings, *info);
    checkVersion(findings, *info);
    checkMode(findings, *info);
    checkProgram(findings, bundle, *info);
  }
  checkAccess(findings, bundle);
}
