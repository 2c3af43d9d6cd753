#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "base/Error.h"
#include "lookup/Account.h"
#include "lookup/LookupOptions.h"

namespace vantrel {

/// Asks the service and waits for its answer, handling events: {"altitude": metres or null}, or
/// {"timezone": name or null}. Errors tell an exit code, and the service's own words without the
/// account. Needs the main queue and the URL session to be installed.
Expected<nlohmann::json> lookUp(const LookupOptions& options,
                                const std::optional<Account>& account);

}  // namespace vantrel
