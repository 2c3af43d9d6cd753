#pragma once

#include <string_view>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

/// Reads plans from JSON: an array, or an object with "plans", of objects as `plan list --json`
/// writes them. null clears an attribute; a missing key leaves it unchanged. Keys that are derived
/// from a plan (uri, link, localDate, images, started) are ignored, unknown keys rejected. A date
/// without "Z" or offset is a wall time of the plan's zone. Errors: kExitBadData, also beyond four
/// levels or two million values.
Expected<PlanDrafts> draftsFromJson(std::string_view text);

}  // namespace vantrel::cli
