#include "ui/installer_model.h"

#include <cmath>
#include <string>
#include <utility>

#include "platform/bundle.h"
#include "platform/main_queue.h"

namespace {

constexpr LinearAnimation kBarAnimation{platform::Seconds(0.25)};

int milliseconds(LinearAnimation animation) {
  return static_cast<int>(std::lround(animation.duration.count() * 1000));
}

}  // namespace

InstallerModel::InstallerModel(std::shared_ptr<ContentView> view, QObject* parent)
    : QObject(parent),
      view_(std::move(view)),
      installProgress_(view_->installProgress),
      progressAnimation_(milliseconds(kBarAnimation)),
      version_(QString::fromStdString(
          platform::bundleInfoText("CFBundleShortVersionString").value_or("-"))),
      observations_{
          view_->installProgress.observe([this](auto, auto animation) { showState(animation); }),
          view_->installationStatus.observe([this](auto&, auto) { showState(); }),
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
  return static_cast<Status>(view_->installationStatus->value());
}

QString InstallerModel::failureMessage() const {
  return QString::fromStdString(view_->installationStatus->message());
}

QString InstallerModel::progressText() const {
  return QStringLiteral("正在安装 %1%").arg(static_cast<int>(installProgress_ * 100));
}
