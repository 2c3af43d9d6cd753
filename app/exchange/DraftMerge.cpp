#include "exchange/DraftMerge.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/Iso8601.h"
#include "cli/ExitCode.h"
#include "cli/PlanLink.h"
#include "cli/PlanSelection.h"
#include "cli/PlanText.h"
#include "exchange/ExchangeText.h"
#include "platform/TimeZone.h"

namespace vantrel::cli {

namespace {

constexpr const char* kPlanEntity = "Planning";
constexpr const char* kIdentifierKey = "uniqueIdentifier";
constexpr const char* kUriScheme = "x-coredata://";
constexpr std::array kContentKeys = {"name", "notes", "date", "timezone", "latitude", "longitude"};

using Values = std::map<std::string, Value>;

template <typename T>
std::optional<T> contentOf(const Value& value) {
  const T* content = std::get_if<T>(&value);
  return content ? std::optional(*content) : std::nullopt;
}

/// Whether two values are one to calendars, which round them and know no control characters.
bool isSameRounded(const Value& stored, const Value& read) {
  constexpr double kPlacePrecision = 0.51e-6;
  const auto date = contentOf<Date>(stored);
  const auto readDate = contentOf<Date>(read);
  if (date && readDate) {
    return std::floor(date->timeIntervalSinceReferenceDate()) ==
           readDate->timeIntervalSinceReferenceDate();
  }
  const auto text = contentOf<std::string>(stored);
  const auto readText = contentOf<std::string>(read);
  if (text && readText) return calendarText(*text) == *readText;
  const auto number = contentOf<double>(stored);
  const auto readNumber = contentOf<double>(read);
  return number && readNumber && std::fabs(*number - *readNumber) <= kPlacePrecision;
}

/// A year that JSON cannot write comes back as null.
bool isUnwritableDate(const Value& stored) {
  const auto date = contentOf<Date>(stored);
  return date && iso8601String(*date).empty();
}

bool isSame(const Value& stored, const Value& read, bool isRounded) {
  if (stored == read || (isRounded && isSameRounded(stored, read))) return true;
  return std::holds_alternative<std::monostate>(read) && isUnwritableDate(stored);
}

/// All that a plan says, as one text: equal for plans that say the same.
template <typename ValueOf>
std::string contentText(ValueOf valueOf) {
  std::string text;
  for (const char* key : kContentKeys) {
    const Value value = valueOf(key);
    text += static_cast<char>('0' + value.index());
    if (const auto words = contentOf<std::string>(value)) {
      text += std::to_string(words->size()) + ':' + *words;
    } else if (const auto date = contentOf<Date>(value)) {
      text += std::to_string(std::bit_cast<std::uint64_t>(date->timeIntervalSinceReferenceDate()));
    } else if (const auto number = contentOf<double>(value)) {
      text += std::to_string(std::bit_cast<std::uint64_t>(*number));
    }
  }
  return text;
}

class Merge {
 public:
  Merge(ManagedObjectContext* context, bool isDryRun) : context_(context), isDryRun_(isDryRun) {}

  Expected<void> readStore(bool withContents) {
    const auto plans = context_ ? allPlans(*context_) : Expected<Plans>(Plans());
    if (!plans) return tl::make_unexpected(plans.error());
    for (const auto& plan : *plans) {
      if (const auto identifier = plan->uniqueIdentifier()) known_.emplace(*identifier, plan);
      if (!withContents) continue;
      contents_.insert(contentText([&](const char* key) { return plan->valueForKey(key); }));
    }
    return {};
  }

  Expected<MergedPlan> merge(const PlanDraft& draft) {
    const auto plan = planOf(draft);
    Values values = valuesOf(draft, plan.get());
    if (!plan) return add(draft, values);
    MergedPlan merged;
    for (const auto& [key, value] : values) {
      if (isSame(plan->valueForKey(key), value, draft.isRounded)) continue;
      merged.outcome = MergeOutcome::kChanged;
      if (isDryRun_) continue;
      if (const auto set = setValue(*plan, key, value); !set) {
        return tl::make_unexpected(set.error());
      }
    }
    const auto valueOf = [&](const char* key) {
      const auto at = values.find(key);
      return at != values.end() ? at->second : plan->valueForKey(key);
    };
    return described(merged.outcome, plan->uniqueIdentifier(), valueOf);
  }

 private:
  std::shared_ptr<Planning> planOf(const PlanDraft& draft) {
    if (!draft.identifier) return nullptr;
    const auto known = known_.find(*draft.identifier);
    if (known != known_.end()) return known->second;
    // What a plan without an identifier goes out under.
    if (!context_ || !draft.identifier->starts_with(kUriScheme)) return nullptr;
    return planWithURI(*context_, *draft.identifier).value_or(nullptr);
  }

  /// What the draft says, its wall time placed in a zone.
  static Values valuesOf(const PlanDraft& draft, const Planning* plan) {
    Values values = draft.values;
    if (!draft.wallSeconds) return values;
    auto zone = plan ? zoneOfPlan(*plan) : TimeZone::defaultTimeZone();
    const auto given = values.find("timezone");
    if (given != values.end()) {
      const auto name = contentOf<std::string>(given->second);
      const auto named = name ? TimeZone::timeZoneWithName(*name) : std::nullopt;
      zone = named.value_or(TimeZone::defaultTimeZone());
    } else if (!plan && TimeZone::timeZoneWithName(zone.name())) {
      // A wall time means little without its zone.
      values["timezone"] = zone.name();
    }
    values["date"] = zone.dateForWallSeconds(*draft.wallSeconds);
    return values;
  }

  static Expected<void> setValue(Planning& plan, const std::string& key, const Value& value) {
    if (plan.setValueForKey(value, key)) return {};
    return tl::make_unexpected(failure(kExitBadData, key, "this store has no place for it"));
  }

  Expected<MergedPlan> add(const PlanDraft& draft, const Values& values) {
    const auto valueOf = [&](const char* key) {
      const auto at = values.find(key);
      return at != values.end() ? at->second : Value();
    };
    if (!draft.identifier && !contents_.insert(contentText(valueOf)).second) {
      return described(MergeOutcome::kSkipped, std::nullopt, valueOf);
    }
    auto identifier = draft.identifier;
    if (!isDryRun_) {
      const auto plan = std::dynamic_pointer_cast<Planning>(context_->insertNewObject(kPlanEntity));
      if (!plan) {
        return tl::make_unexpected(failure(kExitInternal, "plan", "the model has no plans"));
      }
      Values all = values;
      if (identifier) all[kIdentifierKey] = *identifier;
      for (const auto& [key, value] : all) {
        if (const auto set = setValue(*plan, key, value); !set) {
          return tl::make_unexpected(set.error());
        }
      }
      identifier = plan->uniqueIdentifier();
    }
    return described(MergeOutcome::kAdded, identifier, valueOf);
  }

  template <typename ValueOf>
  static MergedPlan described(MergeOutcome outcome, std::optional<std::string> identifier,
                              ValueOf valueOf) {
    return {outcome, std::move(identifier), contentOf<std::string>(valueOf("name")),
            contentOf<Date>(valueOf("date")), contentOf<std::string>(valueOf("timezone"))};
  }

  ManagedObjectContext* context_;
  bool isDryRun_;
  std::unordered_map<std::string, std::shared_ptr<Planning>> known_;
  std::unordered_set<std::string> contents_;
};

}  // namespace

Expected<std::vector<MergedPlan>> mergeDrafts(const std::vector<PlanDraft>& drafts,
                                              ManagedObjectContext* context, bool isDryRun,
                                              const ProgressReport& progress) {
  const bool isSomeWithout = std::any_of(drafts.begin(), drafts.end(),
                                         [](const auto& draft) { return !draft.identifier; });
  Merge merge(context, isDryRun);
  if (const auto read = merge.readStore(isSomeWithout); !read) {
    return tl::make_unexpected(read.error());
  }
  std::vector<MergedPlan> merged;
  std::unordered_set<std::string_view> done;
  for (const auto& draft : drafts) {
    progress(merged.size(), drafts.size());
    if (draft.identifier && !done.insert(*draft.identifier).second) continue;
    auto one = merge.merge(draft);
    if (!one) return tl::make_unexpected(one.error());
    merged.push_back(std::move(*one));
  }
  return merged;
}

}  // namespace vantrel::cli
