#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "platform/application.h"

namespace {

using InputMode = TessalInstaller::InputMode;
constexpr platform::Seconds kEnableRequestSpacing{6.0};

std::string listText(const std::vector<platform::Status>& statuses) {
  std::string text = "[";
  for (const platform::Status status : statuses)
    text += (text.size() > 1 ? ", " : "") + std::to_string(status);
  return text + "]";
}

}  // namespace

void ContentView::attemptFreshEnable(const std::string& trigger) {
  if (installationStatus->is(InstallationStatus::success) ||
      installationStatus->is(InstallationStatus::failed))
    return;
  platform::activateIgnoringOtherApps();
  const TessalInstaller installer;
  registerForActivationIfNeeded("");
  if (installer.isBaseEnabledBestEffort()) return;

  const auto now = platform::now();
  const auto& last = lastEnableBaseRequestAt.get();
  if (last && now - *last < kEnableRequestSpacing) return;

  if (!didDisableAllForFreshEnable) {
    didDisableAllForFreshEnable = true;
    const auto modes = installer.disableInputModesBestEffort({InputMode::pinyin});
    const auto base = installer.disableBaseKeyboardInputMethodBestEffort();
    appendUILog("已调用 TISDisableInputSource（fresh:disableAll，一次，mode=" + listText(modes) +
                ", base=" + (base ? std::to_string(*base) : "nil") + "）\n");
  }

  const auto status = installer.enableBaseKeyboardInputMethodBestEffort();
  if (!status) {
    appendUILog("未找到 base 输入源，无法调用 TISEnableInputSource（trigger=" + trigger + "）\n");
    return;
  }
  lastEnableBaseRequestAt = now;
  appendUILog("已调用 TISEnableInputSource（fresh:enableBase=" + std::to_string(*status) +
              "，trigger=" + trigger + "）\n");
}
