#include "cli/exchange/DraftMerge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/Iso8601.h"
#include "cli/exchange/ExchangeText.h"
#include "cli/plan/PlanSelection.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/LinkedPlan.h"
#include "platform/text/TimeZone.h"
#include "store/Planning.h"

namespace vantrel::cli {

namespace {

constexpr const char* kIdentifierKey = "uniqueIdentifier";
constexpr const char* kUriScheme = "x-coredata://";
constexpr std::array kContentKeys = {"name", "notes", "date", "timezone", "latitude", "longitude"};

using Values = std::map<std::string, Value>;

template <typename T>
std::optional<T> contentOf(const Value& value) {
  const T* content = std::get_if<T>(&value);
  return content ? std::optional(*content) : std::nullopt;
}

/// Whether JSON exports the date as null because of its year.
bool isUnwritableDate(const Value& stored) {
  const auto date = contentOf<Date>(stored);
  return date && iso8601String(*date).empty();
}

bool isSame(const Value& stored, const Value& read, bool isRounded) {
  if (stored == read || (isRounded && isSameRounded(stored, read))) return true;
  return std::holds_alternative<std::monostate>(read) && isUnwritableDate(stored);
}

/// All attributes but the identifier.
using Contents = std::array<Value, kContentKeys.size()>;

template <typename ValueOf>
Contents contentsOf(ValueOf valueOf) {
  Contents contents;
  std::transform(kContentKeys.begin(), kContentKeys.end(), contents.begin(), valueOf);
  return contents;
}

class Merge {
 public:
  Merge(ManagedObjectContext* context, bool isDryRun) : context_(context), isDryRun_(isDryRun) {}

  Expected<void> readStore(bool withContents) {
    const auto plans = context_ ? allPlans(*context_) : Expected<Plans>(Plans());
    if (!plans) return tl::unexpected(plans.error());
    for (const auto& plan : *plans) {
      if (const auto identifier = plan->uniqueIdentifier()) known_[*identifier].push_back(plan);
      if (!withContents) continue;
      ++contents_[contentsOf([&](const char* key) { return plan->valueForKey(key); })];
    }
    return {};
  }

  Expected<MergedPlan> merge(const PlanDraft& draft) {
    auto plan = planOf(draft);
    Values values = valuesOf(draft, plan.get());
    const auto valueOf = [&](const char* key) {
      const auto at = values.find(key);
      if (at != values.end()) return at->second;
      return plan ? plan->valueForKey(key) : Value();
    };
    MergedPlan merged = {MergeOutcome::kSkipped, draft.identifier,
                         contentOf<std::string>(valueOf("name")), contentOf<Date>(valueOf("date")),
                         contentOf<std::string>(valueOf("timezone"))};
    if (plan) {
      merged.identifier = plan->uniqueIdentifier();
      std::erase_if(values, [&](const auto& value) {
        return isSame(plan->valueForKey(value.first), value.second, draft.isRounded);
      });
      if (!values.empty()) merged.outcome = MergeOutcome::kChanged;
    } else if (draft.identifier || !hasAlike(contentsOf(valueOf), draft.isRounded)) {
      merged.outcome = MergeOutcome::kAdded;
      if (draft.identifier) values[kIdentifierKey] = *draft.identifier;
    }
    if (isDryRun_ || merged.outcome == MergeOutcome::kSkipped) return merged;
    if (!plan)
      plan = std::dynamic_pointer_cast<Planning>(context_->insertNewObject(Planning::kEntityName));
    if (!plan) return tl::unexpected(failure(kExitInternal, "plan", "the model has no plans"));
    for (const auto& [key, value] : values) {
      if (!plan->setValueForKey(value, key))
        return invalidData(key, "not an attribute of plans in this store");
    }
    merged.identifier = plan->uniqueIdentifier();
    return merged;
  }

 private:
  /// A JSON file repeats equal plans as often as the store has them; a calendar has each only once.
  bool hasAlike(const Contents& contents, bool isRounded) {
    auto& count = contents_[contents];
    if (count == 0) {
      if (isRounded) ++count;
      return false;
    }
    if (!isRounded) --count;
    return true;
  }

  std::shared_ptr<Planning> planOf(const PlanDraft& draft) {
    if (!draft.identifier) return nullptr;
    const auto known = known_.find(*draft.identifier);
    if (known != known_.end()) {
      if (known->second.empty()) return nullptr;
      auto plan = std::move(known->second.front());
      known->second.pop_front();
      return plan;
    }
    // Plans without an identifier are exported with their object URI.
    if (!context_ || !draft.identifier->starts_with(kUriScheme)) return nullptr;
    return planWithURI(*context_, *draft.identifier).value_or(nullptr);
  }

  /// Returns the values of the draft with its wall time converted to a date.
  static Values valuesOf(const PlanDraft& draft, const Planning* plan) {
    Values values = draft.values;
    if (!draft.wallSeconds) return values;
    auto zone = plan ? zoneOfPlan(*plan) : TimeZone::defaultTimeZone();
    const auto name = values.find("timezone");
    if (name != values.end()) {
      zone = TimeZone::timeZoneOrDefault(contentOf<std::string>(name->second));
    } else if (!plan) {
      // A wall time means little without its zone.
      values["timezone"] = zone.name();
    }
    values["date"] = zone.dateForWallSeconds(*draft.wallSeconds);
    return values;
  }

  ManagedObjectContext* context_;
  bool isDryRun_;
  /// By identifier, the plans that no draft has been merged into.
  std::unordered_map<std::string, std::deque<std::shared_ptr<Planning>>> known_;
  /// The number of plans with these contents that no draft has matched.
  std::map<Contents, std::size_t> contents_;
};

}  // namespace

Expected<std::vector<MergedPlan>> mergeDrafts(const std::vector<PlanDraft>& drafts,
                                              ManagedObjectContext* context, bool isDryRun,
                                              const ProgressReport& progress) {
  const bool hasUnidentified = std::any_of(drafts.begin(), drafts.end(),
                                           [](const auto& draft) { return !draft.identifier; });
  Merge merge(context, isDryRun);
  if (const auto read = merge.readStore(hasUnidentified); !read) {
    return tl::unexpected(read.error());
  }
  std::vector<MergedPlan> merged;
  std::unordered_set<std::string_view> done;
  for (const auto& draft : drafts) {
    progress(merged.size(), drafts.size());
    if (draft.isRounded && draft.identifier && !done.insert(*draft.identifier).second) continue;
    auto one = merge.merge(draft);
    if (!one) return tl::unexpected(one.error());
    merged.push_back(std::move(*one));
  }
  return merged;
}

}  // namespace vantrel::cli
