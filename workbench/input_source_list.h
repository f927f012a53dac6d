#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QObject>
#include <QString>
#include <QVariantList>
#include <memory>

#include "platform/linux/input_source_service.h"

/// The installed input sources as the settings window shows and changes them. It
/// follows what any process does to them.
class InputSourceList : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one, which the window is given.")
  /// One map a source: id, name, isEnabled, isCurrent, isAsked, and isFixed if
  /// it cannot be switched off.
  Q_PROPERTY(QVariantList sources READ sources NOTIFY sourcesChanged)

 public:
  InputSourceList();

  QVariantList sources() const { return sources_; }
  /// The user's own act, so it allows what has not been allowed yet.
  Q_INVOKABLE void setEnabled(const QString& id, bool enabled);

 signals:
  void sourcesChanged();

 private:
  void read();

  QVariantList sources_;
  platform::Observation observer_;
};
