#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>

#include "base/Error.h"
#include "lookup/Account.h"
#include "lookup/LookupOptions.h"

namespace vantrel {

/// Asks the service and runs an event loop until it answers or `options.wait` has passed. Returns
/// {"altitude": metres or null} or {"timezone": name or null}. Errors: kExitUnavailable if the
/// service does not answer or may answer later, otherwise kExitBadData; with the message of the
/// service, without the account. Main thread only; requires an installed main queue and URL
/// session.
Expected<nlohmann::json> lookUp(const LookupOptions& options,
                                const std::optional<Account>& account);

}  // namespace vantrel
