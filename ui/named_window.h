#pragma once

#include <QQuickView>
#include <QString>

/// A window that assistive tools know by a name although it shows no title.
class NamedWindow : public QQuickView {
  Q_OBJECT

 public:
  explicit NamedWindow(QString name) : name_(std::move(name)) {}
  const QString& name() const { return name_; }

  /// Makes the names known to assistive tools. Once.
  static void installAccessibility();

 private:
  const QString name_;
};
