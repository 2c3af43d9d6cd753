#pragma once

#include <string>

#include "base/Error.h"
#include "cli/JsonText.h"
#include "platform/archive/PropertyList.h"

namespace vantrel::cli {

/// "bool", "int", "double", "string", "date", "data", "array" or "dictionary"; reals of both
/// precisions are "double".
std::string typeOfValue(const PropertyList& value);

/// Returns dates in ISO 8601 and data in base64.
Json jsonOfValue(const PropertyList& value);
/// Returns one line that is safe for a terminal: strings without quotes, arrays and dictionaries as
/// JSON.
std::string textOfValue(const PropertyList& value);

/// Parses the argument VALUE; `type` is "bool", "int", "float", "double", "string", "date" or
/// "data". Errors: kExitUsage.
Expected<PropertyList> valueFromText(const std::string& type, const std::string& text);

}  // namespace vantrel::cli
