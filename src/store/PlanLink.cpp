#include "store/PlanLink.h"

#include "base/PercentEncoding.h"

namespace vantrel {

namespace {

constexpr std::string_view kLinkStart = "vantrel://plan?id=";
constexpr std::string_view kUriScheme = "x-coredata://";
/// Longer than any link to a plan with every character escaped.
constexpr std::size_t kLongestLink = 256;

}  // namespace

std::string deepLink(const Planning& plan) {
  return std::string(kLinkStart) +
         percentEncoded(plan.objectID().URIRepresentation(), kUrlHostAllowedCharacterSet);
}

std::optional<std::string> planUriFromDeepLink(std::string_view link) {
  if (!link.starts_with(kLinkStart) || link.size() > kLongestLink) return std::nullopt;
  const std::string_view encoded = link.substr(kLinkStart.size());
  const std::string allowed = std::string(kUrlHostAllowedCharacterSet) + "%";
  if (encoded.find_first_not_of(allowed) != std::string_view::npos) return std::nullopt;
  auto uri = percentDecoded(encoded);
  return uri && isPlanUri(*uri) ? std::optional<std::string>(*std::move(uri)) : std::nullopt;
}

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

}  // namespace vantrel
