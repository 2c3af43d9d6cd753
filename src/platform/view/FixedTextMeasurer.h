#pragma once

#include "platform/view/TextMeasurer.h"

namespace vantrel {

/// Every character is half the font's size wide and every line 1.2 times its size high, so that
/// layouts can be computed without fonts. Breaks lines at spaces, else between characters.
class FixedTextMeasurer : public TextMeasurer {
 public:
  Size sizeOfText(std::string_view text, const Font& font) const override;
  Size boundingSizeOfText(std::string_view text, const Font& font, Size bounds) const override;
};

}  // namespace vantrel
