#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/Planning.h"

namespace vantrel {

/// Returns the link that opens the plan in the main application,
/// "vantrel://plan?id=x-coredata:%2F%2F<store UUID>%2FPlanning%2Fp7": the percent-encoded URI of
/// the plan's object identifier.
std::string deepLink(const Planning& plan);

/// Returns the object URI in an untrusted link; `nullopt` unless it is the URI of a saved plan,
/// encoded like deepLink() does.
std::optional<std::string> planUriFromDeepLink(std::string_view link);

/// Whether `text` is the object URI of a saved plan: "x-coredata://<store UUID>/Planning/p7".
bool isPlanUri(std::string_view text);

}  // namespace vantrel
