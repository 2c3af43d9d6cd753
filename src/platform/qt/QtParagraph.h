#pragma once

#include <memory>
#include <string_view>

class QFont;
class QPainter;
class QPointF;
class QString;
class QTextLayout;

namespace vantrel {

/// Plain text in lines, which are broken in the same way for measuring and for drawing. Main thread
/// only.
class QtParagraph {
 public:
  /// At first, only line ends in the text break lines. Lines are aligned to the leading side of the
  /// interface; a text without letters has the direction of the interface. Texts of more than
  /// 10,000 characters are truncated and get an ellipsis.
  QtParagraph(std::string_view text, const QFont& font, bool interfaceIsRightToLeft = false);
  ~QtParagraph();
  QtParagraph(QtParagraph&& other) noexcept;
  QtParagraph& operator=(QtParagraph&& other) noexcept;

  /// Breaks lines again, at most `width` wide and at word boundaries if possible. If there are more
  /// than `maximumLines` (0 means no limit), truncates the text with an ellipsis.
  void breakLines(double width, int maximumLines = 0);
  int lineCount() const;
  double width() const;
  double height() const;
  double firstLineHeight() const;
  /// Draws with the painter's pen, aligned in the width passed to `breakLines`.
  void draw(QPainter& painter, const QPointF& topLeft) const;

  /// Returns `text` with control characters, except line ends, replaced by spaces, and with
  /// isolates around it if its direction controls would affect the text after it.
  static QString textToShow(std::string_view text);

 private:
  void setLines();

  std::unique_ptr<QTextLayout> layout_;
  bool alignsRight_;
  double width_;
};

}  // namespace vantrel
