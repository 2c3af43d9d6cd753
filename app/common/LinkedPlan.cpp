#include "common/LinkedPlan.h"

#include "common/ExitCode.h"
#include "objectstore/sqlite/StoreError.h"
#include "platform/text/Utf8.h"
#include "store/PlanLink.h"

namespace vantrel {

namespace {

/// Keeps messages about links of any length readable.
std::string excerpt(const std::string& text) {
  constexpr std::size_t kMost = 80;
  const auto shown = std::string(beginning(text, kMost));
  return shown.size() < text.size() ? shown + "..." : shown;
}

}  // namespace

Expected<std::string> uriFromLink(const std::string& link) {
  if (auto uri = planUriFromDeepLink(link)) return *std::move(uri);
  return tl::unexpected(
      failure(kExitBadData, excerpt(link),
              "not a link to a plan; expected vantrel://plan?id=x-coredata:%2F%2F…"));
}

Expected<std::shared_ptr<Planning>> planWithURI(ManagedObjectContext& context,
                                                const std::string& uri) {
  if (!isPlanUri(uri)) {
    return tl::unexpected(failure(kExitBadData, excerpt(uri), "not the URI of a plan"));
  }
  const auto object = context.objectWithURI(uri);
  if (!object && storeErrorCode(object.error()) != StoreErrorCode::kInvalidURI) {
    return tl::unexpected(object.error());
  }
  auto plan = std::dynamic_pointer_cast<Planning>(object.value_or(nullptr));
  if (!plan) return tl::unexpected(failure(kExitMissing, uri, "plan not found in this store"));
  return plan;
}

}  // namespace vantrel
