#pragma once

#include "platform/view/TextMeasurer.h"

namespace vantrel {

/// Measures without fonts: every character is 0.5 times and every line 1.2 times as large as the
/// font's size. Breaks lines at spaces, within a word only if it is longer than a line.
class FixedTextMeasurer : public TextMeasurer {
 public:
  Size sizeOfText(std::string_view text, const Font& font) const override;
  Size boundingSizeOfText(std::string_view text, const Font& font, Size bounds) const override;
};

}  // namespace vantrel
