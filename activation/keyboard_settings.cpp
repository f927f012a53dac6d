#include <array>

#include "installer/content_view.h"
#include "platform/workspace.h"

namespace {
constexpr std::array kSettingsLinks = {
    "x-apple.systempreferences:com.apple.preference.keyboard?InputSources",
    "x-apple.systempreferences:com.apple.Keyboard-Settings.extension",
};
constexpr const char* kKeyboardPane = "/System/Library/PreferencePanes/Keyboard.prefPane";
// The settings open after the enable request, which may raise a prompt: opened at
// the same time they would cover it.
constexpr platform::Seconds kSettingsDelay{0.35};
}  // namespace

void ContentView::openKeyboardSettings() {
  appendUILog(
      "openKeyboardSettings(): opening System Settings → Keyboard → Input Sources (may show the "
      "Add Input Source sheet)\n");
  for (const std::string link : kSettingsLinks) {
    const auto url = platform::parseUrl(link);
    if (!url) continue;
    appendUILog("openKeyboardSettings(): try " + link + "\n");
    if (platform::openUrl(*url)) {
      appendUILog("openKeyboardSettings(): opened " + link + "\n");
      return;
    }
  }
  appendUILog("openKeyboardSettings(): fallback Keyboard.prefPane\n");
  platform::openUrl(platform::fileUrl(kKeyboardPane));
}

void ContentView::userPressedGoEnable() {
  showExitEnableConfirm = false;
  attemptFreshEnable("user");
  platform::asyncOnMainAfter(kSettingsDelay, [view = weak_from_this()] {
    if (const auto self = view.lock()) self->openKeyboardSettings();
  });
}
