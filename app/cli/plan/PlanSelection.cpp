#include "cli/plan/PlanSelection.h"

#include <algorithm>
#include <string_view>

#include "base/Ascii.h"
#include "base/Iso8601.h"
#include "cli/Command.h"
#include "cli/Suggestion.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/LinkedPlan.h"
#include "common/StoreAccess.h"
#include "store/Planning.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kShortestPrefix = 4;
/// One more than `ambiguous` lists, so that it can tell that there are more.
constexpr std::size_t kMostFetched = 11;
constexpr std::string_view kUriScheme = "x-coredata://";
constexpr const char* kIdentifierKey = "uniqueIdentifier";

Expected<Plans> plansWithIdentifier(ManagedObjectContext& context, const std::string& identifier) {
  FetchRequest request;
  request.predicate = Predicate::equal(kIdentifierKey, identifier);
  request.fetchLimit = kMostFetched;
  return fetchPlans(context, request);
}

Expected<Plans> plansWithPrefix(ManagedObjectContext& context, const std::string& prefix) {
  FetchRequest request;
  request.predicate = Predicate::greaterThanOrEqual(kIdentifierKey, prefix);
  request.sortDescriptors = {{kIdentifierKey, true}};
  request.fetchLimit = kMostFetched;
  auto plans = fetchPlans(context, request);
  if (plans) {
    std::erase_if(*plans, [&](const auto& plan) {
      return !plan->uniqueIdentifier().value_or("").starts_with(prefix);
    });
  }
  return plans;
}

/// Returns the exact matches, otherwise those with the prefix; as typed, otherwise in upper case,
/// as the identifiers of new plans are.
Expected<Plans> candidates(ManagedObjectContext& context, const std::string& text) {
  std::vector<std::string> spellings = {text};
  if (asciiUpper(text) != text) spellings.push_back(asciiUpper(text));
  Expected<Plans> plans;
  for (const auto& find : {plansWithIdentifier, plansWithPrefix}) {
    for (const auto& spelling : spellings) {
      plans = find(context, spelling);
      if (!plans || !plans->empty()) return plans;
    }
  }
  return plans;
}

std::vector<std::string> candidateLines(const Plans& plans) {
  std::vector<std::string> lines;
  for (const auto& plan : plans) lines.push_back(candidateText(*plan));
  return lines;
}

}  // namespace

Expected<Plans> fetchPlans(ManagedObjectContext& context, FetchRequest request) {
  request.entityName = Planning::kEntityName;
  return context.executeFetchRequest(request).map([](const auto& objects) {
    Plans plans;
    plans.reserve(objects.size());
    for (const auto& object : objects) {
      if (auto plan = std::dynamic_pointer_cast<Planning>(object)) plans.push_back(std::move(plan));
    }
    return plans;
  });
}

Expected<Plans> allPlans(ManagedObjectContext& context) {
  FetchRequest request;
  request.sortDescriptors = {{"date", true}};
  return fetchPlans(context, request).map([](Plans plans) {
    std::stable_partition(plans.begin(), plans.end(), [](const auto& plan) {
      const auto date = plan->date();
      return date && hasIso8601String(*date);
    });
    return plans;
  });
}

void addRangeOptions(CLI::App& parser, DateRange& range) {
  const auto parse = [](const std::string& option, const std::string& text) {
    return dateIntervalFromArgument(option, text);
  };
  addValueOption(parser, "--from", range.from, parse, "WHEN",
                 "No earlier than this: now, today, friday, +2w, 2026-07-15, \"2026-07-15 23:40\"");
  addValueOption(parser, "--to", range.to, parse, "WHEN",
                 "No later than this; a day counts to its end");
}

Expected<std::unique_ptr<PlanSource>> PlanSource::open(const DateRange& range) {
  return contextForReading().and_then([&](auto* context) {
    return context->freezeStore().map(
        [&] { return std::unique_ptr<PlanSource>(new PlanSource(*context, range)); });
  });
}

void PlanSource::fetch(const Predicate& predicate,
                       const std::function<bool(const Planning&)>& visit) {
  if (failure_) return;
  const auto fetched = context_.enumerateFetchRequest(
      {.entityName = std::string(Planning::kEntityName),
       .predicate = predicate,
       .sortDescriptors = {{"date", true}}},
      [&](const auto& object) { return visit(static_cast<const Planning&>(*object)); });
  if (!fetched) failure_ = fetched.error();
}

void PlanSource::forEach(const Visitor& visit) {
  constexpr double kEarliest = -1e300;
  const auto isDated = [](const Planning& plan) { return hasIso8601String(*plan.date()); };
  const auto first =
      Predicate::greaterThanOrEqual("date", range_.from ? range_.from->first : Date(kEarliest));
  if (range_.from || range_.to) {
    return fetch(first, [&](const Planning& plan) {
      if (range_.to && plan.date() > range_.to->last) return false;
      visit(plan);
      return true;
    });
  }
  bool hasOdd = false;
  fetch(first, [&](const Planning& plan) {
    if (isDated(plan)) {
      visit(plan);
    } else {
      hasOdd = true;
    }
    return true;
  });
  fetch(Predicate::isNil("date"), [&](const Planning& plan) {
    visit(plan);
    return true;
  });
  // Dates beyond the calendar are treated as absent.
  if (!hasOdd) return;
  fetch(first, [&](const Planning& plan) {
    if (!isDated(plan)) visit(plan);
    return true;
  });
}

Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text) {
  if (text.starts_with(kUriScheme)) return planWithURI(context, text);
  if (text.empty()) return invalidArgument("PLAN", text, "an identifier or a URI");
  const auto plans = candidates(context, text);
  if (!plans) return tl::unexpected(plans.error());
  const bool exact =
      plans->size() == 1 && asciiUpper(*plans->front()->uniqueIdentifier()) == asciiUpper(text);
  if (text.size() < kShortestPrefix && !exact) {
    return tl::unexpected(ambiguous(text, "expected at least four characters of an identifier",
                                    candidateLines(*plans)));
  }
  if (plans->empty()) return tl::unexpected(failure(kExitMissing, text, "no matching plan"));
  if (plans->size() > 1) {
    return tl::unexpected(ambiguous(text, "more than one plan matches; give more characters of",
                                    candidateLines(*plans)));
  }
  return plans->front();
}

}  // namespace vantrel::cli
