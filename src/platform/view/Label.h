#pragma once

#include <string>
#include <utility>

#include "base/Color.h"
#include "platform/view/Font.h"
#include "platform/view/View.h"

namespace vantrel {

/// A view of plain text, drawn by the host.
class Label : public View {
 public:
  const std::string& text() const { return text_; }
  void setText(std::string text) {
    if (text == text_) return;
    text_ = std::move(text);
    setNeedsDisplay();
  }
  const Font& font() const { return font_; }
  void setFont(const Font& font) { font_ = font; }
  const Color& textColor() const { return textColor_; }
  void setTextColor(const Color& color) {
    if (color == textColor_) return;
    textColor_ = color;
    setNeedsDisplay();
  }
  /// 0 means no limit.
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines) { numberOfLines_ = lines; }
  bool adjustsFontSizeToFitWidth() const { return adjustsFontSizeToFitWidth_; }
  void setAdjustsFontSizeToFitWidth(bool adjusts) { adjustsFontSizeToFitWidth_ = adjusts; }
  /// The smallest factor of the font's size to which fitting may shrink the text.
  double minimumScaleFactor() const { return minimumScaleFactor_; }
  void setMinimumScaleFactor(double factor) { minimumScaleFactor_ = factor; }

 private:
  std::string text_;
  Font font_ = Font::systemFontOfSize(17);
  Color textColor_ = Color::blackColor();
  int numberOfLines_ = 1;
  bool adjustsFontSizeToFitWidth_ = false;
  double minimumScaleFactor_ = 0;
};

}  // namespace vantrel
