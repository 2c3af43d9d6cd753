#pragma once

#include <memory>
#include <string_view>

class QFont;
class QPainter;
class QPointF;
class QString;

namespace vantrel {

/// A text set in lines: one way to break them, for measuring and for drawing. Plain text whatever
/// it contains; control characters but line ends read as spaces. Main thread.
class QtParagraph {
 public:
  enum class Alignment { kLeft, kRight };

  /// Starts as one line however long; line ends in the text break it all the same. A text without
  /// letters runs in the interface's direction.
  QtParagraph(std::string_view text, const QFont& font, bool interfaceIsRightToLeft = false);
  ~QtParagraph();
  QtParagraph(const QtParagraph&) = delete;
  QtParagraph& operator=(const QtParagraph&) = delete;

  /// Sets the lines anew, at most `width` wide, at word boundaries where there are any. With
  /// `maximumLines`, what does not fit is cut at the end and marked by an ellipsis.
  void breakLines(double width, int maximumLines = 0);
  int lineCount() const;
  double width() const;
  double height() const;
  double firstLineHeight() const;
  /// Draws with the painter's pen; lines are aligned within the width given to breakLines.
  void draw(QPainter& painter, const QPointF& topLeft, Alignment alignment) const;

  /// The text as it is shown. Directions that it sets for itself end with it.
  static QString textToShow(std::string_view text);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
