#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/exchange/PlanDraft.h"
#include "objectstore/ManagedObjectContext.h"

namespace vantrel::cli {

enum class MergeOutcome { kAdded, kChanged, kSkipped };

/// What became of a draft; the rest tells which plan it was, as it is now.
struct MergedPlan {
  MergeOutcome outcome = MergeOutcome::kSkipped;
  std::optional<std::string> identifier;  ///< Nothing for a plan that a dry run would add.
  std::optional<std::string> name;
  std::optional<Date> date;
  std::optional<std::string> timezone;
};

/// Makes the drafts part of the store's plans, unsaved: those with a known identifier are changed
/// where they differ, others added; one without identifier is skipped when a plan says exactly the
/// same. `context` is null where there is no store yet; with `isDryRun`, nothing is touched. Of
/// a calendar's drafts under one identifier only the first counts; of others, the second is the
/// second plan of that identifier, and so on. Fails, and nothing may be
/// saved then, when the store has no place for an attribute.
Expected<std::vector<MergedPlan>> mergeDrafts(const std::vector<PlanDraft>& drafts,
                                              ManagedObjectContext* context, bool isDryRun,
                                              const ProgressReport& progress);

}  // namespace vantrel::cli
