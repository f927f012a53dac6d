#include "platform/workspace.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<Url> parseUrl(const std::string& text) {
  return Url{text};
}
Url fileUrl(const std::filesystem::path& path) {
  return Url{"file://" + path.string()};
}
Status registerWithLaunchServices(const std::filesystem::path& bundle, bool inUpdate) {
  test::note("register with Launch Services " +
             bundle.lexically_relative(test::active->root).string() +
             (inUpdate ? " (update)" : ""));
  return kNoError;
}
bool openUrl(const Url& url) {
  test::note("open " + url.text);
  return !test::active->refusedUrls.contains(url.text);
}
void openApplication(const std::filesystem::path& bundle) {
  test::note("open application " + bundle.lexically_relative(test::active->root).string());
}
std::optional<std::filesystem::path> findApplication(const std::string& bundleIdentifier) {
  return test::valueIn(test::active->applications, bundleIdentifier);
}

}  // namespace platform
