#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/application.h"

namespace {

constexpr platform::Seconds kEnableRequestSpacing{6.0};

std::string listText(const std::vector<platform::Status>& statuses) {
  std::string text = "[";
  for (const platform::Status status : statuses)
    text += (text.size() > 1 ? ", " : "") + std::to_string(status);
  return text + "]";
}

}  // namespace

void ContentView::attemptFreshEnable(const std::string& trigger) {
  if (installationStatus->isOver()) return;
  // Before the throttle: also a press that asks for nothing new brings the
  // installer to the front.
  platform::activateIgnoringOtherApps();
  const TessalInstaller installer;
  registerForActivationIfNeeded("");
  // Disabling what the user has just allowed would undo the user's answer.
  if (installer.isBaseEnabledBestEffort()) return;

  const auto now = platform::now();
  // Each request may make the system show its prompt: not two within a short time.
  const auto& last = lastEnableBaseRequestAt.get();
  if (last && now - *last < kEnableRequestSpacing) return;

  // An earlier installation may have left the sources half enabled. The system asks
  // the user again only for a source that is disabled.
  if (!didDisableAllForFreshEnable) {
    didDisableAllForFreshEnable = true;
    const auto modes = installer.disableInputModesBestEffort({kDefaultMode});
    const auto base = installer.disableBaseKeyboardInputMethodBestEffort();
    appendUILog("已调用 TISDisableInputSource（fresh:disableAll，一次，mode=" + listText(modes) +
                ", base=" + (base ? std::to_string(*base) : "nil") + "）\n");
  }

  const auto status = installer.enableBaseKeyboardInputMethodBestEffort();
  if (!status) {
    // Nothing was requested, so the next attempt need not wait.
    appendUILog("未找到 base 输入源，无法调用 TISEnableInputSource（trigger=" + trigger + "）\n");
    return;
  }
  // The time from before the calls. A request that failed counts too.
  lastEnableBaseRequestAt = now;
  appendUILog(kEnableRequested + std::to_string(*status) + "，trigger=" + trigger + "）\n");
}
