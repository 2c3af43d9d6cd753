#include "platform/view/TextMeasurer.h"

#include <utility>

#include "platform/view/FixedTextMeasurer.h"

namespace vantrel {

namespace {

std::shared_ptr<TextMeasurer>& installed() {
  static std::shared_ptr<TextMeasurer> measurer;
  return measurer;
}

}  // namespace

TextMeasurer& TextMeasurer::sharedMeasurer() {
  if (installed()) return *installed();
  static FixedTextMeasurer fixed;
  return fixed;
}

void TextMeasurer::install(std::shared_ptr<TextMeasurer> measurer) {
  installed() = std::move(measurer);
}

}  // namespace vantrel
