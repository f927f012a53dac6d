#include "ui/centred_text.h"

#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextBoundaryFinder>
#include <QTextOption>
#include <algorithm>
#include <climits>
#include <cmath>

namespace {

constexpr double kScaleStep = 0.025;
// How much of a Chinese character's square lies above the baseline.
constexpr double kAboveBaseline = 0.88;

QString fill(const QString& pattern, const QStringList& names) {
  QString text;
  for (qsizetype i = 0; i < pattern.size(); ++i) {
    const int name = pattern[i] == u'%' && i + 1 < pattern.size() ? pattern[i + 1].digitValue() : 0;
    if (name < 1 || name > names.size()) {
      text += pattern[i];
    } else {
      text += names[name - 1];
      ++i;
    }
  }
  return text;
}

int lengthOf(const QString& name) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
  int length = 0;
  while (finder.toNextBoundary() != -1) ++length;
  return length;
}

/// At most this many characters as readers count them, "…" included.
QString shortened(const QString& name, int length) {
  if (lengthOf(name) <= length) return name;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
  qsizetype end = 0;
  for (int i = 1; i < length; ++i) end = finder.toNextBoundary();
  return name.left(end).trimmed() + u'…';
}

/// Its writing direction ends with it (first strong isolate … pop).
QString isolated(const QString& name) {
  return QChar(0x2068) + name + QChar(0x2069);
}

int lineCountAt(QTextLayout& paragraph, double width) {
  paragraph.beginLayout();
  for (QTextLine line = paragraph.createLine(); line.isValid(); line = paragraph.createLine())
    line.setLineWidth(width);
  paragraph.endLayout();
  return paragraph.lineCount();
}

/// As narrow as its number of lines allows, which leaves no short last line.
void balance(QTextLayout& paragraph, double width) {
  const int count = lineCountAt(paragraph, width);
  double tooNarrow = 0;
  while (count > 1 && width - tooNarrow > 0.5) {
    const double middle = (width + tooNarrow) / 2;
    (lineCountAt(paragraph, middle) > count ? tooNarrow : width) = middle;
  }
  lineCountAt(paragraph, width);
}

QRectF inkOf(const QTextLine& line) {
  QRectF ink;
  for (const QGlyphRun& run : line.glyphRuns()) {
    const auto glyphs = run.glyphIndexes();
    const auto positions = run.positions();
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
      const QRectF glyph = run.rawFont().boundingRect(glyphs[i]);
      if (!glyph.isEmpty()) ink |= glyph.translated(positions[i]);
    }
  }
  return ink;
}

}  // namespace

CentredText::CentredText(QQuickItem* parent) : QQuickPaintedItem(parent) {
  connect(this, &CentredText::changed, this, [this] {
    if (isComponentComplete()) layOut();
  });
}

QString CentredText::text() const {
  QStringList names;
  for (const QString& name : names_) names << name.simplified();
  return fill(pattern_, names);
}

void CentredText::componentComplete() {
  QQuickPaintedItem::componentComplete();
  layOut();
}

CentredText::Paragraphs CentredText::paragraphs(int nameLength) const {
  QStringList names;
  for (const QString& name : names_) names << isolated(shortened(name.simplified(), nameLength));
  QTextOption option;
  option.setTextDirection(Qt::LeftToRight);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setUseDesignMetrics(true);
  Paragraphs paragraphs;
  for (const QString& text : fill(pattern_, names).split(u'\n')) {
    paragraphs.push_back(std::make_unique<QTextLayout>(text, font_));
    paragraphs.back()->setTextOption(option);
  }
  return paragraphs;
}

double CentredText::fittingScale(const Paragraphs& paragraphs) const {
  const int steps = static_cast<int>(std::lround((1.0 - minimumScale_) / kScaleStep));
  for (int step = 0; step <= steps; ++step) {
    const double scale = 1.0 - step * kScaleStep;
    int count = 0;
    for (const auto& paragraph : paragraphs)
      count += lineCountAt(*paragraph, maximumWidth_ / scale);
    if (maximumLineCount_ == 0 || count <= maximumLineCount_) return scale;
  }
  return 0.0;
}

void CentredText::layOut() {
  lines_.clear();
  paragraphs_ = paragraphs(INT_MAX);
  scale_ = fittingScale(paragraphs_);
  isShortened_ = scale_ == 0.0;
  if (isShortened_) {
    int fits = 1, tooLong = 1;
    for (const QString& name : names_) tooLong = std::max(tooLong, lengthOf(name.simplified()));
    while (tooLong - fits > 1) {
      const int middle = (fits + tooLong) / 2;
      (fittingScale(paragraphs(middle)) > 0.0 ? fits : tooLong) = middle;
    }
    paragraphs_ = paragraphs(fits);
    scale_ = std::max(fittingScale(paragraphs_), minimumScale_);
  }

  double width = 0.0;
  for (const auto& paragraph : paragraphs_) {
    balance(*paragraph, maximumWidth_ / scale_);
    for (int i = 0; i < paragraph->lineCount(); ++i) {
      const QTextLine line = paragraph->lineAt(i);
      const QRectF ink = inkOf(line);
      lines_.push_back({line, ink.left(), ink.width()});
      width = std::max(width, ink.width());
    }
  }
  setImplicitSize(std::ceil(width * scale_), lineCount() * lineHeight_ * scale_);
  update();
  emit laidOut();
}

void CentredText::paint(QPainter* painter) {
  painter->setPen(color_);
  painter->scale(scale_, scale_);
  const double em = font_.pixelSize();
  double baseline = (lineHeight_ - em) / 2 + kAboveBaseline * em;
  for (const auto& [line, inkLeft, inkWidth] : lines_) {
    const double left = (width() / scale_ - inkWidth) / 2;
    line.draw(painter, {left - inkLeft, baseline - line.y() - line.ascent()});
    baseline += lineHeight_;
  }
}
