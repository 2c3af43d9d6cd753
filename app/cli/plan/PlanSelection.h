#pragma once

#include <functional>
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

/// The plans of the existing store in a range, by date; without limits, undated plans follow. Reads
/// them one by one: a million plans need no memory. All passes see the same state of the store.
class PlanSource {
 public:
  static Expected<std::unique_ptr<PlanSource>> open(const DateRange& range);
  ~PlanSource() { context_.unlockStore(); }
  PlanSource(const PlanSource&) = delete;
  PlanSource& operator=(const PlanSource&) = delete;

  using Visitor = std::function<void(const Planning&)>;
  /// May be called repeatedly. If the store cannot be read, stops and sets `failure`.
  void forEach(const Visitor& visit);
  const std::optional<Error>& failure() const { return failure_; }

 private:
  PlanSource(ManagedObjectContext& context, const DateRange& range)
      : context_(context), range_(range) {}
  void fetch(const Predicate& predicate, const std::function<bool(const Planning&)>& visit);

  ManagedObjectContext& context_;
  DateRange range_;
  std::optional<Error> failure_;
};

/// Finds a plan by its object URI, its unique identifier, or a prefix of that of at least four
/// characters, in either case. Errors: kExitMissing if there is none; kExitUsage, with the
/// candidates, if there are several or the prefix is too short.
Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text);

}  // namespace vantrel::cli
