#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Reads the XML form; `nullopt` if it is damaged or beyond PropertyList's limits.
std::optional<PropertyList> propertyListWithXml(std::span<const std::byte> data);

}  // namespace vantrel
