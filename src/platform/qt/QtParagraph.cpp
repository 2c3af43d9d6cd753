#include "platform/qt/QtParagraph.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>

#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

constexpr double kUnlimited = 1e6;
/// More than a window shows. QTextLayout needs O(n^2) for a long word: minutes for 1,000,000
/// letters.
constexpr std::size_t kMostCharacters = 10'000;

bool hasLetters(const QString& text) {
  return std::any_of(text.begin(), text.end(), [](QChar c) {
    return c.direction() == QChar::DirL || c.direction() == QChar::DirR ||
           c.direction() == QChar::DirAL;
  });
}

constexpr QChar kFirstStrongIsolate(0x2068);
constexpr QChar kPopIsolate(0x2069);

bool opensIsolate(QChar c) {
  return c.direction() == QChar::DirLRI || c.direction() == QChar::DirRLI ||
         c.direction() == QChar::DirFSI;
}

/// Encloses `text` in an isolate if it changes the direction of the text after it: if it has
/// embeddings or overrides, opens an isolate without closing it, or closes one it has not opened.
QString isolated(const QString& text) {
  QString result(kFirstStrongIsolate);
  bool isNeeded = false;
  int open = 0;
  for (const QChar c : text) {
    const bool closes = c == kPopIsolate;
    const bool embeds = c >= QChar(0x202A) && c <= QChar(0x202E);
    if (open == 0 && (closes || embeds)) isNeeded = true;
    if (open == 0 && closes) continue;
    if (opensIsolate(c)) ++open;
    if (closes) --open;
    result += c;
  }
  return isNeeded || open > 0 ? result + QString(open + 1, kPopIsolate) : text;
}

}  // namespace

QtParagraph::QtParagraph(std::string_view text, const QFont& font, bool interfaceIsRightToLeft)
    : layout_(std::make_unique<QTextLayout>()),
      alignsRight_(interfaceIsRightToLeft),
      width_(kUnlimited) {
  const std::string_view kept = beginning(text, kMostCharacters);
  QString shown = textToShow(kept);
  if (kept.size() < text.size()) shown += QChar(0x2026);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  // `draw` aligns the lines, as the layout would align each text by its own direction.
  option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
  const bool rightToLeft = hasLetters(shown) ? shown.isRightToLeft() : interfaceIsRightToLeft;
  option.setTextDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  layout_->setText(shown);
  layout_->setFont(font);
  layout_->setTextOption(option);
  setLines();
}

QtParagraph::~QtParagraph() = default;
QtParagraph::QtParagraph(QtParagraph&& other) noexcept = default;
QtParagraph& QtParagraph::operator=(QtParagraph&& other) noexcept = default;

void QtParagraph::setLines() {
  double y = 0;
  layout_->beginLayout();
  for (QTextLine line = layout_->createLine(); line.isValid(); line = layout_->createLine()) {
    line.setLineWidth(width_);
    line.setPosition({0, y});
    y += line.height();
  }
  layout_->endLayout();
}

void QtParagraph::breakLines(double width, int maximumLines) {
  width_ = width;
  setLines();
  if (maximumLines <= 0 || lineCount() <= maximumLines) return;
  const int kept = layout_->lineAt(maximumLines - 1).textStart();
  QString rest = layout_->text().mid(kept);
  // A line end in the rest would start another line.
  rest.replace(QChar::LineSeparator, QLatin1Char(' '));
  const QFontMetricsF metrics(layout_->font());
  // The added ellipsis stays even if the rest fits into one line.
  rest = metrics.elidedText(rest + QChar(0x2026), Qt::ElideRight, width);
  layout_->setText(layout_->text().left(kept) + rest);
  setLines();
}

int QtParagraph::lineCount() const {
  return layout_->lineCount();
}

double QtParagraph::width() const {
  double width = 0;
  for (int i = 0; i < lineCount(); ++i) {
    width = std::max(width, layout_->lineAt(i).naturalTextWidth());
  }
  return width;
}

double QtParagraph::height() const {
  const QTextLine last = layout_->lineAt(lineCount() - 1);
  return last.y() + last.height();
}

double QtParagraph::firstLineHeight() const {
  return layout_->lineAt(0).height();
}

void QtParagraph::draw(QPainter& painter, const QPointF& topLeft) const {
  for (int i = 0; i < lineCount(); ++i) {
    const QTextLine line = layout_->lineAt(i);
    const double indent = alignsRight_ ? width_ - line.naturalTextWidth() : 0;
    line.draw(&painter, topLeft + QPointF(indent, 0));
  }
}

QString QtParagraph::textToShow(std::string_view text) {
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  for (QChar& c : shown) {
    if (c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f' || c == u'\u0085' ||
        c == QChar::ParagraphSeparator) {
      c = QChar::LineSeparator;
    } else if (c.category() == QChar::Other_Control) {
      c = u' ';
    }
  }
  return isolated(shown);
}

}  // namespace vantrel
