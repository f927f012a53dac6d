#include "platform/bundle.h"

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"

namespace platform {

namespace {

// For a tool in Contents/Helpers, or one started through a symbolic link from
// elsewhere, the main bundle is the tool's own folder; the folder around
// "Contents" is the bundle all the same.
CfRef<CFBundleRef> findBundle() {
  const CFBundleRef mainBundle = CFBundleGetMainBundle();
  if (const auto url = adopt(CFBundleCopyExecutableURL(mainBundle))) {
    std::error_code ignored;
    const auto executable =
        std::filesystem::weakly_canonical(toPath(url.get()).value_or(""), ignored);
    const auto contents = executable.parent_path().parent_path();
    if (contents.filename() == "Contents") {
      const auto location = toCfUrl(contents.parent_path(), true);
      if (auto bundle = adopt(CFBundleCreate(nullptr, location.get()))) return bundle;
    }
  }
  return retain(mainBundle);
}

CFBundleRef bundle() {
  static const CfRef<CFBundleRef> found = findBundle();
  return found.get();
}

}  // namespace

std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type) {
  const auto url = adopt(
      CFBundleCopyResourceURL(bundle(), toCfString(name).get(), toCfString(type).get(), nullptr));
  if (!url) return std::nullopt;
  const auto absolute = adopt(CFURLCopyAbsoluteURL(url.get()));
  return toPath(absolute.get());
}

std::filesystem::path bundleLocation() {
  const auto url = adopt(CFBundleCopyBundleURL(bundle()));
  // A folder's URL may bring a trailing slash along.
  const auto path = toPath(url.get()).value_or("/").lexically_normal();
  return path.has_filename() ? path : path.parent_path();
}

std::optional<std::string> bundleInfoText(const std::string& key) {
  const auto value =
      toPropertyListValue(CFBundleGetValueForInfoDictionaryKey(bundle(), toCfString(key).get()));
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

}  // namespace platform
