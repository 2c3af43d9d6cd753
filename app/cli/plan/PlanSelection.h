#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel::cli {

using Plans = std::vector<std::shared_ptr<Planning>>;

/// The plans that a request finds; its entity is theirs.
Expected<Plans> fetchPlans(ManagedObjectContext& context, FetchRequest request);

/// Every plan by date, those without one last.
Expected<Plans> allPlans(ManagedObjectContext& context);

/// The plans of the existing store that `--from` and `--to` leave, by date: moments as people type
/// them. Undated plans are among them, last, only when neither is given.
Expected<Plans> plansBetween(const std::optional<std::string>& from,
                             const std::optional<std::string>& to);

/// The plan that `text` names: its object URI, its unique identifier, or a prefix of that of at
/// least four characters, in either case. kExitMissing if there is none; kExitUsage, with the
/// candidates, if there are several or the prefix is too short.
Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text);

}  // namespace vantrel::cli
