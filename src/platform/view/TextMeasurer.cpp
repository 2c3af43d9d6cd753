#include "platform/view/TextMeasurer.h"

#include "platform/view/FixedTextMeasurer.h"

namespace vantrel {

TextMeasurer& TextMeasurer::sharedMeasurer() {
  if (installed_) return *installed_;
  static FixedTextMeasurer fixed;
  return fixed;
}

}  // namespace vantrel
