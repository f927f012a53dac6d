#include "installer/admin_script_source.h"

#include <algorithm>
#include <string_view>

#include "platform/admin_script.h"

namespace {

constexpr std::string_view kBeforePath =
    R"(do shell script "/bin/sh " & quoted form of POSIX path of ")";
constexpr std::string_view kBetweenPathAndPrompt =
    R"(" with administrator privileges with prompt ")";
constexpr std::string_view kAfterPrompt = R"(")";
static_assert(kBeforePath.size() == 59 && kBetweenPathAndPrompt.size() == 45);

/// Upper and lower case of ASCII letters are the same; `phrase` is lower case.
bool containsIgnoringCase(std::string_view text, std::string_view phrase) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
  return std::search(text.begin(), text.end(), phrase.begin(), phrase.end(),
                     [&](char a, char b) { return lower(a) == b; }) != text.end();
}

}  // namespace

std::string adminPrompt(const std::filesystem::path& bundleLocation) {
  return bundleLocation.stem().string() + " 想要进行更改";
}

std::string adminScriptSource(const std::string& scriptPath, const std::string& prompt) {
  std::string source(kBeforePath);
  return source.append(scriptPath)
      .append(kBetweenPathAndPrompt)
      .append(prompt)
      .append(kAfterPrompt);
}

bool isAuthorisationRefused(std::optional<int> number, const std::string& message) {
  return number == platform::kAdminScriptCancelled ||
         containsIgnoringCase(message, "user canceled") ||
         message.find("用户取消") != std::string::npos ||
         containsIgnoringCase(message, "not authorized");
}
