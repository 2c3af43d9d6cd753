#include "platform/text/TimeZone.h"

#include <absl/time/civil_time.h>
#include <absl/time/time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace vantrel {

struct TimeZone::Rules {
  std::string name;
  absl::TimeZone zone;
};

namespace {

/// Far beyond all rules, well within the library's range.
constexpr double kLastSecond = 1e14;
constexpr std::size_t kLongestName = 255;
constexpr auto kReferenceSecond = static_cast<std::int64_t>(Date::kReferenceDateSince1970);

std::int64_t wholeSeconds(double seconds) {
  if (std::isnan(seconds)) return 0;
  return static_cast<std::int64_t>(std::floor(std::clamp(seconds, -kLastSecond, kLastSecond)));
}

/// Whether the text is made like a zone's name. The library would open any path, its own "file:"
/// names included.
bool isZoneName(std::string_view text) {
  char before = '/';
  if (text.size() > kLongestName) return false;
  for (const char c : text) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '_' || c == '+' || c == '-';
    if (!plain && (c != '/' || before == '/')) return false;
    before = c;
  }
  return before != '/';
}

/// The name that /etc/localtime (or a TZ that is a path) stands for; empty when it tells none.
std::string nameFromPath(const std::string& path) {
  constexpr std::string_view kFolder = "zoneinfo/";
  const auto at = path.rfind(kFolder);
  return at == std::string::npos ? std::string() : path.substr(at + kFolder.size());
}

absl::Time instantOf(Date date) {
  return absl::FromUnixSeconds(kReferenceSecond +
                               wholeSeconds(date.timeIntervalSinceReferenceDate()));
}

std::string deviceZoneName() {
  if (const char* variable = std::getenv("TZ")) {
    std::string text = variable;
    if (text.starts_with(':')) text.erase(0, 1);
    if (text.empty()) return "UTC";
    return text.starts_with('/') ? nameFromPath(text) : text;
  }
  std::error_code error;
  return nameFromPath(std::filesystem::read_symlink("/etc/localtime", error).string());
}

}  // namespace

std::optional<TimeZone> TimeZone::timeZoneWithName(std::string_view name) {
  // The library reads "localtime" as the device's zone; it names none.
  if (!isZoneName(name) || name == "localtime") return std::nullopt;
  auto rules = std::make_shared<Rules>();
  rules->name = name;
  if (!absl::LoadTimeZone(rules->name, &rules->zone)) return std::nullopt;
  return TimeZone(std::move(rules));
}

TimeZone TimeZone::timeZoneForSecondsFromGMT(int seconds) {
  auto rules = std::make_shared<Rules>();
  rules->name = "GMT";
  if (seconds != 0) {
    const int minutes = std::abs(seconds) / 60;
    const auto digits = std::to_string(10000 + minutes / 60 * 100 + minutes % 60).substr(1);
    rules->name += (seconds < 0 ? "-" : "+") + digits;
  }
  rules->zone = absl::FixedTimeZone(seconds);
  return TimeZone(std::move(rules));
}

TimeZone TimeZone::defaultTimeZone() {
  if (auto zone = timeZoneWithName(deviceZoneName())) return *zone;
  // A file without a name, or a TZ that nothing knows: the library's answer, UTC at the worst.
  auto rules = std::make_shared<Rules>();
  rules->zone = absl::LocalTimeZone();
  rules->name = rules->zone.name();
  return TimeZone(std::move(rules));
}

const std::string& TimeZone::name() const {
  return rules_->name;
}

int TimeZone::secondsFromGMTForDate(Date date) const {
  return rules_->zone.At(instantOf(date)).offset;
}

bool TimeZone::isDaylightSavingTimeForDate(Date date) const {
  return rules_->zone.At(instantOf(date)).is_dst;
}

std::string TimeZone::abbreviationForDate(Date date) const {
  return rules_->zone.At(instantOf(date)).zone_abbr;
}

std::optional<Date> TimeZone::nextDaylightSavingTimeTransitionAfterDate(Date date) const {
  absl::TimeZone::CivilTransition change;
  if (!rules_->zone.NextTransition(instantOf(date), &change)) return std::nullopt;
  const auto wallSeconds = static_cast<double>(change.from - absl::CivilSecond(2001, 1, 1));
  return Date(wallSeconds - secondsFromGMTForDate(date));
}

Date TimeZone::dateForWallSeconds(double wallSeconds) const {
  const std::int64_t whole = wholeSeconds(wallSeconds);
  // The instant by the offset before a change is the first of two, or lies behind the gap.
  const auto instant = rules_->zone.At(absl::CivilSecond(2001, 1, 1) + whole).pre;
  return Date(static_cast<double>(absl::ToUnixSeconds(instant) - kReferenceSecond) +
              (wallSeconds - static_cast<double>(whole)));
}

}  // namespace vantrel
