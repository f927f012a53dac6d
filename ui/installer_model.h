#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QObject>
#include <QString>
#include <array>
#include <memory>
#include <optional>

#include "installer/content_view.h"
#include "platform/application.h"

/// Shows a ContentView to the screens and hands their events to it. Each signal
/// reports all changes so far, so no screen is drawn from a state that the view never
/// had. Main thread.
class InstallerModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one, which the window is given.")
  Q_PROPERTY(Status status READ status NOTIFY stateChanged)
  Q_PROPERTY(QString failureMessage READ failureMessage NOTIFY stateChanged)
  Q_PROPERTY(bool isInstalling READ isInstalling NOTIFY stateChanged)
  Q_PROPERTY(bool showExitEnableConfirm READ showExitEnableConfirm NOTIFY stateChanged)
  Q_PROPERTY(double installProgress READ installProgress NOTIFY installProgressChanged)
  Q_PROPERTY(QString progressText READ progressText NOTIFY installProgressChanged)
  Q_PROPERTY(int progressAnimation READ progressAnimation NOTIFY installProgressChanged)
  Q_PROPERTY(QString appDisplayName READ appDisplayName CONSTANT)
  Q_PROPERTY(QString version READ version CONSTANT)

 public:
  using Case = ContentView::InstallationStatus::Case;
  enum class Status {
    Failed = int(Case::failed),
    NotStarted = int(Case::notStarted),
    Installing = int(Case::installing),
    WaitingEnable = int(Case::waitingEnable),
    Success = int(Case::success),
    NeedAdmin = int(Case::needAdmin),
  };
  Q_ENUM(Status)

  explicit InstallerModel(std::shared_ptr<ContentView> view, QObject* parent = nullptr);

  Status status() const;
  /// Empty unless failed.
  QString failureMessage() const;
  bool isInstalling() const { return view_->isInstalling; }
  bool showExitEnableConfirm() const { return view_->showExitEnableConfirm; }
  /// 0.0 to 1.0.
  double installProgress() const { return installProgress_; }
  /// "正在安装 42%": the percentage is truncated.
  QString progressText() const;
  /// How long the latest change of installProgress takes to show, in milliseconds.
  int progressAnimation() const { return progressAnimation_; }

  /// The product's name as its bundle gives it.
  QString appDisplayName() const { return QString::fromStdString(view_->appDisplayName()); }
  /// The bundle's version, "-" if it has none.
  QString version() const { return version_; }

  // What the buttons do. A key may come before the button has gone; it starts no
  // second run.
  Q_INVOKABLE void userPressedInstall() {
    if (!view_->isInstalling) view_->userPressedInstall();
  }
  Q_INVOKABLE void userPressedRetryAuthorisation() {
    if (!view_->isInstalling) view_->userPressedRetryAuthorisation();
  }
  Q_INVOKABLE void openKeyboardSettings() { view_->openKeyboardSettings(); }
  Q_INVOKABLE void userPressedGoEnable() { view_->userPressedGoEnable(); }
  Q_INVOKABLE void userPressedExit() { view_->userPressedExit(); }
  Q_INVOKABLE static void quit() { platform::terminateApplication(); }

  // The waiting screen has come on screen, or left it.
  Q_INVOKABLE void enableWaitingViewDidAppear() { view_->enableWaitingViewDidAppear(); }
  Q_INVOKABLE void enableWaitingViewDidDisappear() { view_->enableWaitingViewDidDisappear(); }

 signals:
  void stateChanged();
  void installProgressChanged();

 private:
  void showState(std::optional<LinearAnimation> progressAnimation = std::nullopt);

  std::shared_ptr<ContentView> view_;
  double installProgress_;
  int progressAnimation_;
  const QString version_;
  std::array<platform::Observation, 4> observations_;
};
