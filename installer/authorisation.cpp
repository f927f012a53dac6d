#include "installer/authorisation.h"

#include <algorithm>
#include <string_view>

#include "platform/bundle.h"

namespace {

/// Upper and lower case of ASCII letters are the same; `phrase` is lower case.
bool containsIgnoringCase(std::string_view text, std::string_view phrase) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
  return std::search(text.begin(), text.end(), phrase.begin(), phrase.end(),
                     [&](char a, char b) { return lower(a) == b; }) != text.end();
}

}  // namespace

std::string adminPrompt() {
  return platform::bundleLocation().stem().string() + " 想要进行更改";
}

bool isAuthorisationRefused(const platform::AdminScriptError& error) {
  const std::string message = error.message.value_or("");
  return error.number == platform::kAdminScriptCancelled ||
         containsIgnoringCase(message, "user canceled") ||
         message.find("用户取消") != std::string::npos ||
         containsIgnoringCase(message, "not authorized");
}
