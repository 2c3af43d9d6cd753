#include "today/InterfaceText.h"

#include "platform/system/Bundle.h"
#include "platform/text/Locale.h"

namespace vantrel {

std::string localized(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Today");
}

bool interfaceIsRightToLeft() {
  return Locale(Locale::preferredLanguages().front()).isRightToLeft();
}

}  // namespace vantrel
