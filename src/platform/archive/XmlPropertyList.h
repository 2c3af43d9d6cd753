#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Parses an XML property list; `nullopt` if it is damaged or exceeds the limits of `PropertyList`.
std::optional<PropertyList> propertyListWithXml(std::span<const std::byte> data);

}  // namespace vantrel
