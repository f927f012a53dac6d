#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QObject>
#include <QQuickItem>
#include <QString>

/// What the password window shows, and the user's answer to it.
class PasswordPrompt : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one, which the window is given.")
  Q_PROPERTY(QString text MEMBER text_ CONSTANT)
  Q_PROPERTY(QString userName MEMBER userName_ CONSTANT)

 public:
  PasswordPrompt(QString text, QString userName)
      : text_(std::move(text)), userName_(std::move(userName)) {}

 signals:
  /// The password is the text of this field. It is read from the field, and never
  /// enters the script engine.
  void accepted(QQuickItem* field);
  void cancelled();

 private:
  const QString text_;
  const QString userName_;
};
