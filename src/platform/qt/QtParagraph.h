#pragma once

#include <memory>
#include <string_view>

class QFont;
class QPainter;
class QPointF;
class QString;
class QTextLayout;

namespace vantrel {

/// A text set in lines: one way to break them, for measuring and for drawing. Plain text whatever
/// it contains; control characters but line ends read as spaces. Main thread.
class QtParagraph {
 public:
  /// Starts as one line however long; line ends in the text break it all the same. Lines stand on
  /// the interface's leading side; a text without letters runs in the interface's direction. Texts
  /// of more than 10,000 characters are cut there and marked by an ellipsis.
  QtParagraph(std::string_view text, const QFont& font, bool interfaceIsRightToLeft = false);
  ~QtParagraph();
  QtParagraph(QtParagraph&& other) noexcept;
  QtParagraph& operator=(QtParagraph&& other) noexcept;

  /// Sets the lines anew, at most `width` wide, at word boundaries where there are any. With
  /// `maximumLines`, what does not fit is cut at the end and marked by an ellipsis.
  void breakLines(double width, int maximumLines = 0);
  int lineCount() const;
  double width() const;
  double height() const;
  double firstLineHeight() const;
  /// Draws with the painter's pen, in an area of the width given to breakLines.
  void draw(QPainter& painter, const QPointF& topLeft) const;

  /// The text as it is shown. Directions that it sets for itself end with it.
  static QString textToShow(std::string_view text);

 private:
  void setLines();

  std::unique_ptr<QTextLayout> layout_;
  bool alignsRight_;
  double width_;
};

}  // namespace vantrel
