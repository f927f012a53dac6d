#include "platform/common/admin_script_source.h"

namespace platform {

namespace {

constexpr std::string_view kBeforePath =
    R"(do shell script "/bin/sh " & quoted form of POSIX path of ")";
constexpr std::string_view kBetweenPathAndPrompt =
    R"(" with administrator privileges with prompt ")";
constexpr std::string_view kAfterPrompt = R"(")";
static_assert(kBeforePath.size() == 59 && kBetweenPathAndPrompt.size() == 45);

// The number of a syntax error in the scripting language.
constexpr int kSyntaxError = -2741;

}  // namespace

std::string composeAdminScriptSource(const AdminScript& script) {
  return std::string(kBeforePath)
      .append(script.path)
      .append(kBetweenPathAndPrompt)
      .append(script.prompt)
      .append(kAfterPrompt);
}

std::optional<AdminScript> parseAdminScriptSource(std::string_view source) {
  if (!source.starts_with(kBeforePath)) return std::nullopt;
  source.remove_prefix(kBeforePath.size());
  const auto middle = source.find(kBetweenPathAndPrompt);
  if (middle == std::string_view::npos) return std::nullopt;
  const std::string_view path = source.substr(0, middle);
  source.remove_prefix(middle + kBetweenPathAndPrompt.size());
  if (!source.ends_with(kAfterPrompt)) return std::nullopt;
  source.remove_suffix(kAfterPrompt.size());
  if (path.find('"') != std::string_view::npos || source.find('"') != std::string_view::npos)
    return std::nullopt;
  return AdminScript{std::string(path), std::string(source)};
}

AdminScriptError adminScriptSyntaxError(const std::string& source) {
  return {kSyntaxError, "脚本写法不对：" + source};
}

}  // namespace platform
