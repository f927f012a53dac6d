#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

#include "platform/linux/input_source_service.h"

/// The installed input sources as the settings window shows and changes them. It
/// follows what any process does to them.
class InputSourceList : public QObject {
  Q_OBJECT
  /// One map for each source: id, name, isEnabled, isCurrent, isAsked, and isFixed if
  /// it cannot be switched off.
  Q_PROPERTY(QVariantList sources READ sources NOTIFY sourcesChanged)

 public:
  InputSourceList();

  QVariantList sources() const { return sources_; }
  /// The user's own answer: on allows all sources of the bundle, off denies them.
  Q_INVOKABLE void setEnabled(const QString& id, bool enabled);

 signals:
  void sourcesChanged();

 private:
  void read();

  QVariantList sources_;
  platform::Observation observer_;
};
