#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <memory>
#include <vector>

/// A sentence with names in it, centred line by line. What counts is the ink: of a
/// full-width quote or bracket at the end of a line only the half that is seen.
/// The lines of a paragraph are about equally long.
///
/// Its implicit size is that of the ink, and of the lines.
class CentredText : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  /// The sentence, with "%1" or "%2" where a name stands.
  Q_PROPERTY(QString pattern MEMBER pattern_ NOTIFY changed)
  /// They are plain text. Each keeps its own writing direction and stands in one
  /// paragraph: what is blank in it becomes a space.
  Q_PROPERTY(QStringList names MEMBER names_ NOTIFY changed)
  Q_PROPERTY(QFont font MEMBER font_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// From line to line.
  Q_PROPERTY(double lineHeight MEMBER lineHeight_ NOTIFY changed)
  Q_PROPERTY(double maximumWidth MEMBER maximumWidth_ NOTIFY changed)
  /// 0 for any number. What has too many lines first shrinks, down to
  /// `minimumScale`; then the names are shortened, so that the sentence stays whole.
  Q_PROPERTY(int maximumLineCount MEMBER maximumLineCount_ NOTIFY changed)
  Q_PROPERTY(double minimumScale MEMBER minimumScale_ NOTIFY changed)
  /// The sentence with its names in full.
  Q_PROPERTY(QString text READ text NOTIFY changed)
  /// How it is shown.
  Q_PROPERTY(int lineCount READ lineCount NOTIFY laidOut)
  Q_PROPERTY(double shownScale READ shownScale NOTIFY laidOut)
  Q_PROPERTY(bool truncated READ truncated NOTIFY laidOut)

 public:
  explicit CentredText(QQuickItem* parent = nullptr);

  QString text() const;
  int lineCount() const { return static_cast<int>(lines_.size()); }
  double shownScale() const { return scale_; }
  bool truncated() const { return isShortened_; }
  void paint(QPainter* painter) override;

 signals:
  void changed();
  void laidOut();

 protected:
  void componentComplete() override;

 private:
  using Paragraphs = std::vector<std::unique_ptr<QTextLayout>>;
  struct Line {
    QTextLine line;
    double inkLeft;
    double inkWidth;
  };

  void layOut();
  /// The paragraphs with names of at most this many characters; laid out later.
  Paragraphs paragraphs(int nameLength) const;
  /// The largest scale at which they have no more lines than they may; 0 if none.
  double fittingScale(const Paragraphs& paragraphs) const;

  QString pattern_;
  QStringList names_;
  QFont font_;
  QColor color_ = Qt::black;
  double lineHeight_ = 16.0;
  double maximumWidth_ = 0.0;
  int maximumLineCount_ = 0;
  double minimumScale_ = 1.0;

  Paragraphs paragraphs_;
  std::vector<Line> lines_;
  double scale_ = 1.0;
  bool isShortened_ = false;
};
