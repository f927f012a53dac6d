#include "platform/workspace.h"

#import <AppKit/AppKit.h>
#include <CoreServices/CoreServices.h>

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"
#include "platform/macos/ns_string.h"

namespace platform {

namespace {

CfRef<CFURLRef> parse(const std::string& text) {
  return adopt(CFURLCreateWithString(nullptr, toCfString(text).get(), nullptr));
}

}  // namespace

std::optional<Url> parseUrl(const std::string& text) {
  if (!parse(text)) return std::nullopt;
  return Url{text};
}

Url fileUrl(const std::filesystem::path& path) {
  return {toString(CFURLGetString(toCfUrl(path, false).get()))};
}

Status registerWithLaunchServices(const std::filesystem::path& bundle, bool inUpdate) {
  return LSRegisterURL(toCfUrl(bundle, true).get(), inUpdate);
}

bool openUrl(const Url& url) {
  @autoreleasepool {
    return [NSWorkspace.sharedWorkspace openURL:(__bridge NSURL*)parse(url.text).get()];
  }
}

void openApplication(const std::filesystem::path& bundle) {
  @autoreleasepool {
    [NSWorkspace.sharedWorkspace openApplicationAtURL:(__bridge NSURL*)toCfUrl(bundle, true).get()
                                        configuration:[NSWorkspaceOpenConfiguration configuration]
                                    completionHandler:nil];
  }
}

std::optional<std::filesystem::path> findApplication(const std::string& bundleIdentifier) {
  @autoreleasepool {
    NSURL* url = [NSWorkspace.sharedWorkspace
        URLForApplicationWithBundleIdentifier:toNSString(bundleIdentifier)];
    if (url == nil) return std::nullopt;
    return toPath((__bridge CFURLRef)url);
  }
}

}  // namespace platform
