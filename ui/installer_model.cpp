#include "ui/installer_model.h"

#include <cmath>
#include <string>
#include <utility>

#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/main_queue.h"
#include "ui/installer_ui.h"

namespace {

constexpr LinearAnimation kBarAnimation{platform::Seconds(0.25)};

int milliseconds(LinearAnimation animation) {
  return static_cast<int>(std::lround(animation.duration.count() * 1000));
}

QString shortVersion() {
  const auto value = platform::bundleInfoValue("CFBundleShortVersionString");
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? QString::fromStdString(*text) : QStringLiteral("-");
}

}  // namespace

InstallerModel::InstallerModel(std::shared_ptr<ContentView> view, QObject* parent)
    : QObject(parent),
      view_(std::move(view)),
      installProgress_(view_->installProgress),
      progressAnimation_(milliseconds(kBarAnimation)),
      appDisplayName_(::appDisplayName()),
      version_(shortVersion()),
      observations_{
          view_->installProgress.observe([this](auto, auto animation) { showState(animation); }),
          view_->installationStatus.observe([this](const auto& status, auto) {
            showState();
            // After what the installation itself still opens.
            if (status.is(InstallationStatus::success))
              platform::asyncOnMain(platform::activateIgnoringOtherApps);
          }),
          view_->isInstalling.observe([this](auto, auto) { showState(); }),
          view_->showExitEnableConfirm.observe([this](auto, auto) { showState(); }),
      } {}

void InstallerModel::showState(std::optional<LinearAnimation> progressAnimation) {
  // The progress goes first: a bar that appears shows it at once.
  if (const double progress = view_->installProgress; progress != installProgress_) {
    installProgress_ = progress;
    progressAnimation_ = milliseconds(progressAnimation.value_or(kBarAnimation));
    emit installProgressChanged();
  }
  emit stateChanged();
}

InstallerModel::Status InstallerModel::status() const {
  switch (view_->installationStatus->value()) {
    case InstallationStatus::failed:
      return Status::Failed;
    case InstallationStatus::notStarted:
      return Status::NotStarted;
    case InstallationStatus::installing:
      return Status::Installing;
    case InstallationStatus::waitingEnable:
      return Status::WaitingEnable;
    case InstallationStatus::success:
      return Status::Success;
    case InstallationStatus::needAdmin:
      return Status::NeedAdmin;
  }
  Q_UNREACHABLE();
}

QString InstallerModel::failureMessage() const {
  return QString::fromStdString(view_->installationStatus->message());
}

QString InstallerModel::failureMessageInTwoLines() const {
  QString message = failureMessage();
  for (const QString& firstLine : {QStringLiteral("未检测到"), QStringLiteral("找不到安装脚本")}) {
    if (message.startsWith(firstLine))
      return firstLine + u'\n' + message.mid(firstLine.size()).trimmed();
  }
  return message;
}

QString InstallerModel::progressText() const {
  return QStringLiteral("正在安装 %1%").arg(static_cast<int>(installProgress_ * 100));
}

void InstallerModel::quit() {
  platform::terminateApplication();
}
