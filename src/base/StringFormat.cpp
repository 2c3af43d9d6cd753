#include "base/StringFormat.h"

namespace vantrel {

std::string stringWithFormat(std::string_view format,
                             std::initializer_list<std::string_view> arguments) {
  constexpr std::string_view kPlaceholder = "%@";
  std::string result;
  for (const auto argument : arguments) {
    const auto at = format.find(kPlaceholder);
    if (at == std::string_view::npos) break;
    result.append(format.substr(0, at)).append(argument);
    format.remove_prefix(at + kPlaceholder.size());
  }
  return result.append(format);
}

}  // namespace vantrel
