#pragma once

#include <memory>
#include <string_view>

#include "base/Geometry.h"
#include "platform/view/Font.h"

namespace vantrel {

/// Measures text as it is drawn. A replaceable service: `main` or a test installs another.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  /// The size of `text` in one line. An empty text has the height of a line and no width.
  virtual Size sizeOfText(std::string_view text, const Font& font) const = 0;
  /// The size of `text` in lines of at most `bounds.width`, cut at `bounds.height`. An empty text
  /// has height 0.
  virtual Size boundingSizeOfText(std::string_view text, const Font& font, Size bounds) const = 0;

  /// The installed measurer, otherwise a `FixedTextMeasurer`.
  static TextMeasurer& sharedMeasurer();
  /// Null restores the default. Main thread only, before other threads use it.
  static void install(std::shared_ptr<TextMeasurer> measurer) { installed_ = std::move(measurer); }

 private:
  inline static std::shared_ptr<TextMeasurer> installed_;
};

}  // namespace vantrel
