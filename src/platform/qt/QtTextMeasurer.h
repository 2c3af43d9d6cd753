#pragma once

#include "platform/view/TextMeasurer.h"

class QFont;

namespace vantrel {

/// Measures with the desktop's font, as `QtParagraph` draws. Requires a QGuiApplication. Main
/// thread only.
class QtTextMeasurer : public TextMeasurer {
 public:
  /// `scale` is the factor of the user's text size.
  explicit QtTextMeasurer(double scale = 1) : scale_(scale) {}

  double scale() const { return scale_; }
  void setScale(double scale) { scale_ = scale; }
  QFont fontFor(const Font& font) const;
  Size sizeOfText(std::string_view text, const Font& font) const override;
  Size boundingSizeOfText(std::string_view text, const Font& font, Size bounds) const override;

 private:
  double scale_;
};

}  // namespace vantrel
