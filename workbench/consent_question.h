#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QObject>
#include <QString>

/// What the consent window asks, and the user's answer to it.
class ConsentQuestion : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one, which the window is given.")
  /// Who asks, and for which input method.
  Q_PROPERTY(QString appName MEMBER appName_ CONSTANT)
  Q_PROPERTY(QString inputMethodName MEMBER inputMethodName_ CONSTANT)

 public:
  ConsentQuestion(QString appName, QString inputMethodName)
      : appName_(std::move(appName)), inputMethodName_(std::move(inputMethodName)) {}

 signals:
  void answered(bool allowed);

 private:
  const QString appName_;
  const QString inputMethodName_;
};
