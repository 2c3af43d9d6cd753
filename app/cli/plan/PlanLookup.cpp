#include "cli/plan/PlanLookup.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "cli/plan/PlanSelection.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/PlanLink.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kShortestPrefix = 4;
constexpr std::size_t kMostCandidates = 10;
constexpr std::string_view kUriScheme = "x-coredata://";
constexpr const char* kIdentifierKey = "uniqueIdentifier";

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return text;
}

Expected<Plans> plansWithIdentifier(ManagedObjectContext& context, const std::string& identifier) {
  FetchRequest request;
  request.predicate = Predicate::equal(kIdentifierKey, identifier);
  request.fetchLimit = kMostCandidates + 1;
  return fetchPlans(context, request);
}

Expected<Plans> plansWithPrefix(ManagedObjectContext& context, const std::string& prefix) {
  FetchRequest request;
  request.predicate = Predicate::greaterThanOrEqual(kIdentifierKey, prefix);
  request.sortDescriptors = {{kIdentifierKey, true}};
  request.fetchLimit = kMostCandidates + 1;
  auto plans = fetchPlans(context, request);
  if (plans) {
    std::erase_if(*plans, [&](const auto& plan) {
      return !plan->uniqueIdentifier().value_or("").starts_with(prefix);
    });
  }
  return plans;
}

/// The exact matches, else those that begin so; as typed, else in the upper case of new plans.
Expected<Plans> candidates(ManagedObjectContext& context, const std::string& text) {
  std::vector<std::string> spellings = {text};
  if (upperCase(text) != text) spellings.push_back(upperCase(text));
  Expected<Plans> plans;
  for (const auto& find : {plansWithIdentifier, plansWithPrefix}) {
    for (const auto& spelling : spellings) {
      plans = find(context, spelling);
      if (!plans || !plans->empty()) return plans;
    }
  }
  return plans;
}

Error listed(const std::string& text, const std::string& why, const Plans& plans) {
  std::string lines = why;
  for (std::size_t i = 0; i < plans.size() && i < kMostCandidates; ++i) {
    lines += "\n" + candidateText(*plans[i]);
  }
  if (plans.size() > kMostCandidates) lines += "\n...";
  return failure(kExitUsage, text, lines);
}

}  // namespace

Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text) {
  if (text.starts_with(kUriScheme)) return planWithURI(context, text);
  if (text.empty()) return tl::make_unexpected(failure(kExitUsage, "PLAN", "must not be empty"));
  const auto plans = candidates(context, text);
  if (!plans) return tl::make_unexpected(plans.error());
  const bool exact =
      plans->size() == 1 && upperCase(*plans->front()->uniqueIdentifier()) == upperCase(text);
  if (text.size() < kShortestPrefix && !exact) {
    return tl::make_unexpected(listed(text,
                                      "too short to name a plan; give at least four "
                                      "characters of its identifier",
                                      *plans));
  }
  if (plans->empty()) return tl::make_unexpected(failure(kExitMissing, text, "no such plan"));
  if (plans->size() > 1) {
    return tl::make_unexpected(listed(text, "more than one plan; give more characters of", *plans));
  }
  return plans->front();
}

}  // namespace vantrel::cli
