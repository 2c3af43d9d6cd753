#pragma once

#include <memory>
#include <string_view>

#include "base/Geometry.h"
#include "platform/view/Font.h"

namespace vantrel {

/// Measures text as it will be drawn. Replaceable: `main` or a test installs the one to use.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  /// The size of the text in one line. An empty text has a line's height and no width.
  virtual Size sizeOfText(std::string_view text, const Font& font) const = 0;
  /// The size of the text wrapped into lines at most `bounds.width` wide, no higher than
  /// `bounds.height`. An empty text has height 0.
  virtual Size boundingSizeOfText(std::string_view text, const Font& font, Size bounds) const = 0;

  /// The installed measurer; a FixedTextMeasurer when none was.
  static TextMeasurer& sharedMeasurer();
  /// Null brings the default back. Main thread, before others ask.
  static void install(std::shared_ptr<TextMeasurer> measurer);
};

}  // namespace vantrel
