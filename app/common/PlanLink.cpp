#include "common/PlanLink.h"

#include <string_view>

#include "base/PercentEncoding.h"
#include "common/ExitCode.h"
#include "objectstore/sqlite/StoreError.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

constexpr std::string_view kLinkStart = "vantrel://plan?id=";
constexpr std::string_view kUriScheme = "x-coredata://";
/// Longer than any link to a plan with every character escaped.
constexpr std::size_t kLongestLink = 256;

/// Whether the text is an object URI of a saved plan: "x-coredata://<store UUID>/Planning/p7".
bool isPlanUri(std::string_view text) {
  constexpr std::string_view kEntityPart = "/Planning/p";
  constexpr std::size_t kUuidLength = 36;
  constexpr std::size_t kMostDigits = 18;
  if (!text.starts_with(kUriScheme)) return false;
  text.remove_prefix(kUriScheme.size());
  if (text.find_first_not_of("0123456789ABCDEFabcdef-") != kUuidLength) return false;
  text.remove_prefix(kUuidLength);
  if (!text.starts_with(kEntityPart)) return false;
  text.remove_prefix(kEntityPart.size());
  return !text.empty() && text.size() <= kMostDigits && text.front() != '0' &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// A message stays one that a person can read, whatever came as a link.
std::string excerpt(const std::string& text) {
  constexpr std::size_t kMost = 80;
  const auto shown = std::string(beginning(text, kMost));
  return shown.size() < text.size() ? shown + "..." : shown;
}

}  // namespace

std::string deepLink(const Planning& plan) {
  return std::string(kLinkStart) +
         percentEncoded(plan.objectID().URIRepresentation(), kUrlHostAllowedCharacterSet);
}

Expected<std::string> uriFromLink(const std::string& link) {
  if (link.starts_with(kLinkStart) && link.size() <= kLongestLink) {
    const std::string_view encoded = std::string_view(link).substr(kLinkStart.size());
    const std::string allowed = std::string(kUrlHostAllowedCharacterSet) + "%";
    const bool clean = encoded.find_first_not_of(allowed) == std::string_view::npos;
    if (const auto uri = percentDecoded(encoded); clean && uri && isPlanUri(*uri)) return *uri;
  }
  return tl::make_unexpected(
      failure(kExitBadData, excerpt(link),
              "no link to a plan; those look like vantrel://plan?id=x-coredata:%2F%2F…"));
}

Expected<std::shared_ptr<Planning>> planWithURI(ManagedObjectContext& context,
                                                const std::string& uri) {
  if (!isPlanUri(uri)) {
    return tl::make_unexpected(failure(kExitBadData, excerpt(uri), "names no plan"));
  }
  const auto object = context.objectWithURI(uri);
  if (!object && storeErrorCode(object.error()) != StoreErrorCode::kInvalidURI) {
    return tl::make_unexpected(object.error());
  }
  auto plan = std::dynamic_pointer_cast<Planning>(object.value_or(nullptr));
  if (!plan) return tl::make_unexpected(failure(kExitMissing, uri, "no such plan in this store"));
  return plan;
}

}  // namespace vantrel
