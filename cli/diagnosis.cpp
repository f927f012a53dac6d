#include "cli/diagnosis.h"

#include <algorithm>

#include "cli/installed_bundles.h"
#include "platform/admin_rights.h"
#include "platform/file_root.h"

namespace fs = std::filesystem;
using Level = Finding::Level;
using Scope = Finding::Scope;

Findings diagnose(bool machineOnly) {
  Findings findings;
  checkBundle(findings);
  checkLeftovers(findings);
  checkLogs(findings);
  if (machineOnly) return findings;
  checkSources(findings);
  checkPreferences(findings);
  checkAdminRights(findings);
  return findings;
}

bool isHealthy(const Findings& findings) {
  return std::none_of(findings.begin(), findings.end(),
                      [](const Finding& finding) { return finding.level == Level::fail; });
}

void checkLeftovers(Findings& findings) {
  std::string left;
  std::string damaged;
  for (const fs::path& bundle : installedBundles()) {
    const fs::path folder = platform::onDisk(bundle.parent_path());
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      // The names that the installation script uses.
      const std::string name = entry->path().filename().string();
      const std::string prefix = std::string(".").append(bundle.filename().string()).append(".");
      if (!name.starts_with(prefix)) continue;
      const std::string kind = name.substr(prefix.size());
      std::string& list = kind == "staging" || kind == "backup" ? damaged : left;
      list += (list.empty() ? "" : "、") + entry->path().string();
    }
  }
  if (!damaged.empty())
    findings.push_back(
        {Level::fail, Scope::machine, "leftovers", "上一次安装或移除被中断，留下了：" + damaged,
         "确认没有安装正在进行，然后运行 orvane-install install，它会先清理再安装", damaged});
  if (!left.empty())
    findings.push_back({Level::warn, Scope::machine, "leftovers",
                        "旧版本有一部分删不掉，留下了：" + left,
                        "重新启动后再运行一次 orvane-install install", left});
  if (damaged.empty() && left.empty())
    findings.push_back({Level::pass, Scope::machine, "leftovers", "没有被中断的安装留下的文件"});
}

void checkAdminRights(Findings& findings) {
  Finding finding{Level::pass, Scope::user, "rights", "", Finding::kNothingToDo, ""};
  switch (platform::adminRights()) {
    case platform::AdminRights::held:
      finding.text = "现在就有管理员权限";
      break;
    case platform::AdminRights::askable:
      finding.text = "可以取得管理员权限：安装时输入密码即可";
      break;
    case platform::AdminRights::ofAnother:
      finding.level = Level::warn;
      finding.text = "当前用户不是管理员";
      finding.next = "安装时输入一位管理员的用户名和密码，或请管理员安装；启用不需要管理员";
      break;
    case platform::AdminRights::unavailable:
      finding.level = Level::fail;
      finding.text = "无法取得管理员权限：没有可以询问密码的程序";
      finding.next = "在图形界面里运行，或请管理员安装；启用不需要管理员";
      break;
  }
  findings.push_back(std::move(finding));
}
