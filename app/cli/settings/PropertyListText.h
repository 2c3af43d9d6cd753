#pragma once

#include <string>

#include "base/Error.h"
#include "cli/JsonText.h"
#include "platform/archive/PropertyList.h"

namespace vantrel::cli {

/// "bool", "int", "double", "string", "date", "data", "array" or "dictionary"; reals of both
/// precisions are "double".
std::string typeOfValue(const PropertyList& value);

/// Dates in ISO 8601, data in base64, arrays and dictionaries nested.
Json jsonOfValue(const PropertyList& value);
/// The same in one line for people, safe for a terminal: strings without quotes, what is nested as
/// JSON.
std::string textOfValue(const PropertyList& value);

/// A value of `type` ("bool", "int", "float", "double", "string", "date", "data") from what was
/// typed; another type, and a text that does not fit, are usage errors.
Expected<PropertyList> valueFromText(const std::string& type, const std::string& text);

}  // namespace vantrel::cli
