#include "platform/view/TextMeasurer.h"

#include <utility>

#include "platform/view/FixedTextMeasurer.h"

namespace vantrel {

namespace {

std::shared_ptr<TextMeasurer>& installedMeasurer() {
  static std::shared_ptr<TextMeasurer> measurer;
  return measurer;
}

}  // namespace

TextMeasurer& TextMeasurer::sharedMeasurer() {
  if (installedMeasurer()) return *installedMeasurer();
  static FixedTextMeasurer fixed;
  return fixed;
}

void TextMeasurer::install(std::shared_ptr<TextMeasurer> measurer) {
  installedMeasurer() = std::move(measurer);
}

}  // namespace vantrel
