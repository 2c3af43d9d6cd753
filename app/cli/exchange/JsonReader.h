#pragma once

#include <string_view>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

/// Plans from JSON text (UTF-8, at most four deep and two million values): an array, or an object
/// with "plans", of objects as `plan list
/// --json` writes them. null clears an attribute, a missing key leaves it; what only describes a
/// plan (uri, link, localDate, images, started) is passed over, any other key refused. A date
/// without "Z" or offset is wall time of the plan's zone.
Expected<PlanDrafts> draftsFromJson(std::string_view text);

}  // namespace vantrel::cli
