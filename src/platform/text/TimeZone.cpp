#include "platform/text/TimeZone.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <mutex>
#include <sstream>
#include <vector>

#include "base/Ascii.h"
#include "base/Clock.h"
#include "base/FileDescriptor.h"
#include "platform/text/ZoneRules.h"

namespace vantrel {

namespace fs = std::filesystem;

struct TimeZone::Rules {
  std::string name;
  ZoneRules rules;
};

namespace {

/// Later than all rules, and within the range of `ZoneRules`.
constexpr double kLastRuleSecond = 1e14;
constexpr std::size_t kLongestName = 255;
constexpr auto kReferenceSecond = static_cast<std::int64_t>(Date::kReferenceDateSince1970);

std::int64_t wholeSeconds(double seconds) {
  if (std::isnan(seconds)) return 0;
  return static_cast<std::int64_t>(
      std::floor(std::clamp(seconds, -kLastRuleSecond, kLastRuleSecond)));
}

std::int64_t instantOf(Date date) {
  return kReferenceSecond + wholeSeconds(date.timeIntervalSinceReferenceDate());
}

/// Whether `text` has the form of a zone name, which is a safe path in the database.
bool isZoneName(std::string_view text) {
  char before = '/';
  if (text.size() > kLongestName) return false;
  for (const char c : text) {
    const bool plain = isAsciiWordCharacter(c) || c == '+' || c == '-';
    if (!plain && (c != '/' || before == '/')) return false;
    before = c;
  }
  // "localtime" is a link to the device's zone, not a zone name.
  return before != '/' && text != "localtime";
}

/// The zone name of a file; empty if `path` is not in a zone database.
std::string_view nameFromPath(std::string_view path) {
  constexpr std::string_view kFolder = "zoneinfo/";
  const auto at = path.rfind(kFolder);
  return at == std::string_view::npos ? std::string_view() : path.substr(at + kFolder.size());
}

fs::path databaseFolder() {
  const char* folder = std::getenv("TZDIR");
  return folder && *folder == '/' ? folder : "/usr/share/zoneinfo";
}

/// The content of a regular file of at most 1 MiB; empty if that cannot be read. Never waits.
std::string contentOf(const fs::path& path) {
  constexpr std::size_t kLimit = std::size_t{1} << 20;
  const auto content = readAll(openRegularFile(path.c_str()), kLimit);
  if (!content) return {};
  return {reinterpret_cast<const char*>(content->data()), content->size()};
}

/// "GMT+0545"
std::string offsetName(int seconds) {
  if (seconds == 0) return "GMT";
  const int minutes = std::abs(seconds) / 60;
  const auto digits = std::to_string(10000 + minutes / 60 * 100 + minutes % 60).substr(1);
  return (seconds < 0 ? "GMT-" : "GMT+") + digits;
}

/// The inverse of `offsetName`.
std::optional<int> offsetFromName(std::string_view name) {
  constexpr int kLimit = 26 * 3600;
  constexpr std::size_t kSign = 3;
  int digits = 0;
  if (name.size() > kSign + 1) {
    std::from_chars(name.data() + kSign + 1, name.data() + name.size(), digits);
  }
  digits %= 10000;
  int seconds = (digits / 100 * 60 + digits % 100) * 60;
  if (name.substr(0, kSign + 1) == "GMT-") seconds = -seconds;
  if (std::abs(seconds) >= kLimit || offsetName(seconds) != name) return std::nullopt;
  return seconds;
}

ZoneRules fixedRules(int seconds, std::string abbreviation) {
  return ZoneRules(PosixZoneRule(seconds, std::move(abbreviation)));
}

std::optional<ZoneRules> rulesWithName(std::string_view name) {
  if (!isZoneName(name)) return std::nullopt;
  if (auto rules = ZoneRules::decoded(contentOf(databaseFolder() / name))) return rules;
  if (name == "UTC") return fixedRules(0, "UTC");
  const auto offset = offsetFromName(name);
  if (!offset) return std::nullopt;
  return fixedRules(*offset, std::string(*offset == 0 ? name : name.substr(3)));
}

/// The name of a zone with these rules: `likelyName` or a zone of the database with the same file,
/// otherwise the first with the same last rule, otherwise that of the current offset.
std::string nameForRules(const ZoneRules& rules, std::string_view likelyName) {
  const auto now = instantOf(Clock::sharedClock().now());
  auto name = offsetName(rules.periodAt(now).offset);
  if (rules.file().empty() && !rules.nextChangeAfter(now)) return name;

  std::vector<std::string> names = {std::string(likelyName), "UTC"};
  std::istringstream table(contentOf(databaseFolder() / "zone.tab"));
  for (std::string line; std::getline(table, line);) {
    std::istringstream words(line);
    std::string country, place, zone;
    if (words >> country >> place >> zone && country != "#") names.push_back(zone);
  }
  bool isAlike = false;
  for (const auto& candidate : names) {
    const auto other = rulesWithName(candidate);
    if (!other) continue;
    if (!rules.file().empty() && other->file() == rules.file()) return candidate;
    if (!isAlike && rules.lastRule() && other->lastRule() == rules.lastRule()) {
      isAlike = true;
      name = candidate;
    }
  }
  return name;
}

/// The zones that the process has used, and the names that are not zones. Thread-safe.
class ZoneCache {
 public:
  template <typename Make>
  std::optional<TimeZone> zone(const std::string& key, Make make) {
    {
      const std::lock_guard lock(mutex_);
      const auto known = zones_.find(key);
      if (known != zones_.end()) return known->second;
    }
    std::optional<TimeZone> made = make();
    const std::lock_guard lock(mutex_);
    if (zones_.size() < kMostZones) zones_.emplace(key, made);
    return made;
  }

 private:
  /// A limit, as names are untrusted; more than any database has.
  static constexpr std::size_t kMostZones = 2000;
  std::mutex mutex_;
  std::map<std::string, std::optional<TimeZone>> zones_;
};

}  // namespace

TimeZone::TimeZone(std::string name, ZoneRules rules)
    : rules_(std::make_shared<const Rules>(Rules{std::move(name), std::move(rules)})) {}

std::optional<TimeZone> TimeZone::timeZoneWithName(std::string_view name) {
  if (!isZoneName(name)) return std::nullopt;
  static ZoneCache cache;
  return cache.zone(std::string(name), [&]() -> std::optional<TimeZone> {
    auto rules = rulesWithName(name);
    if (!rules) return std::nullopt;
    return TimeZone(std::string(name), std::move(*rules));
  });
}

TimeZone TimeZone::timeZoneForSecondsFromGMT(int seconds) {
  auto name = offsetName(seconds);
  return {name, fixedRules(seconds, seconds == 0 ? name : name.substr(3))};
}

TimeZone TimeZone::systemTimeZone(const fs::path& folder) {
  std::error_code error;
  const auto link = fs::read_symlink(folder / "localtime", error).string();
  if (auto zone = timeZoneWithName(nameFromPath(link))) return *zone;
  auto likelyName = contentOf(folder / "timezone");
  likelyName.erase(std::find(likelyName.begin(), likelyName.end(), '\n'), likelyName.end());
  const auto file = contentOf(folder / "localtime");
  return timeZoneWithRules(ZoneRules::decoded(file), file, likelyName);
}

TimeZone TimeZone::timeZoneOrDefault(const std::optional<std::string>& name) {
  if (name) {
    if (auto zone = timeZoneWithName(*name)) return *std::move(zone);
  }
  return defaultTimeZone();
}

TimeZone TimeZone::defaultTimeZone() {
  const char* variable = std::getenv("TZ");
  if (!variable) return systemTimeZone();
  std::string_view text = variable;
  if (text.starts_with(':')) text.remove_prefix(1);
  // Do not open paths from the environment: use the zone name in them.
  const bool isPath = text.starts_with('/') || text == "localtime";
  if (auto zone = timeZoneWithName(isPath ? nameFromPath(text) : text)) return *zone;
  if (isPath) return systemTimeZone();
  const auto rule = PosixZoneRule::parsed(text);
  return timeZoneWithRules(rule ? std::optional(ZoneRules(*rule)) : std::nullopt, text,
                           text.substr(0, text.find(',')));
}

TimeZone TimeZone::timeZoneWithRules(const std::optional<ZoneRules>& rules, std::string_view source,
                                     std::string_view likelyName) {
  if (!rules) return {"UTC", fixedRules(0, "UTC")};
  static ZoneCache cache;
  const auto key = std::string(likelyName) + '\n' + std::string(source);
  return *cache.zone(key, [&] { return TimeZone(nameForRules(*rules, likelyName), *rules); });
}

const std::string& TimeZone::name() const {
  return rules_->name;
}

int TimeZone::secondsFromGMTForDate(Date date) const {
  return rules_->rules.periodAt(instantOf(date)).offset;
}

bool TimeZone::isDaylightSavingTimeForDate(Date date) const {
  return rules_->rules.periodAt(instantOf(date)).isDaylight;
}

std::string TimeZone::abbreviationForDate(Date date) const {
  return std::string(rules_->rules.periodAt(instantOf(date)).abbreviation);
}

std::optional<Date> TimeZone::nextDaylightSavingTimeTransitionAfterDate(Date date) const {
  const auto change = rules_->rules.nextChangeAfter(instantOf(date));
  if (!change) return std::nullopt;
  return Date(static_cast<double>(*change - kReferenceSecond));
}

Date TimeZone::dateForWallSeconds(double wallSeconds) const {
  const std::int64_t whole = wholeSeconds(wallSeconds);
  const auto instant = rules_->rules.instantOfWallTime(kReferenceSecond + whole);
  return Date(static_cast<double>(instant - kReferenceSecond) +
              (wallSeconds - static_cast<double>(whole)));
}

}  // namespace vantrel
