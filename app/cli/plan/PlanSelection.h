#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"
#include "cli/Arguments.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace CLI {
class App;
}

namespace vantrel::cli {

using Plans = std::vector<std::shared_ptr<Planning>>;

/// Returns the plans that match `request`, whose entity name is set here.
Expected<Plans> fetchPlans(ManagedObjectContext& context, FetchRequest request);

/// Returns all plans by date, those without a date last.
Expected<Plans> allPlans(ManagedObjectContext& context);

/// The options --from and --to.
struct DateRange {
  std::optional<DateInterval> from;
  std::optional<DateInterval> to;
};
/// `range` must outlive the parser.
void addRangeOptions(CLI::App& parser, DateRange& range);

/// Returns the plans of the existing store in `range` by date. Undated plans are included, last,
/// only if the range has no limit.
Expected<Plans> plansBetween(const DateRange& range);

/// Finds a plan by its object URI, its unique identifier, or a prefix of that of at least four
/// characters, in either case. Errors: kExitMissing if there is none; kExitUsage, with the
/// candidates, if there are several or the prefix is too short.
Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text);

}  // namespace vantrel::cli
