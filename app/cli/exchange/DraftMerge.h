#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exchange/PlanDraft.h"
#include "objectstore/ManagedObjectContext.h"

namespace vantrel::cli {

enum class MergeOutcome { kAdded, kChanged, kSkipped };

/// The result for a draft, with values of the plan after the merge.
struct MergedPlan {
  MergeOutcome outcome = MergeOutcome::kSkipped;
  std::optional<std::string> identifier;  ///< `nullopt` for a plan that a dry run would add.
  std::optional<std::string> name;
  std::optional<Date> date;
  std::optional<std::string> timezone;
};

/// Merges the drafts into the plans of `context` without saving: updates the plan with the same
/// identifier, otherwise adds a plan. A draft without identifier is skipped if a plan has the same
/// values. `context` is null if there is no store yet. If `isDryRun`, changes nothing. If drafts of
/// a calendar have the same identifier, only the first is used; otherwise the nth is merged into
/// the nth plan with it. Errors: kExitBadData if the store has no such attribute; the caller must
/// not save then.
Expected<std::vector<MergedPlan>> mergeDrafts(const std::vector<PlanDraft>& drafts,
                                              ManagedObjectContext* context, bool isDryRun,
                                              const ProgressReport& progress);

}  // namespace vantrel::cli
