#include "cli/store/SamplePlans.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <numbers>

#include "base/Clock.h"
#include "cli/plan/PlanSelection.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "platform/text/TimeZone.h"
#include "store/Planning.h"
#include "store/VantrelPrefiller.h"

namespace vantrel::cli {

namespace {

constexpr double kSecondsPerDay = 86400;
constexpr double kSecondsPerMinute = 60;
constexpr double kRounding = 5 * kSecondsPerMinute;

enum class Day { kAhead, kFullMoon, kPerseids };

/// A sample plan: `minutesAfter` the sun passes `sunAltitude` on the given day.
struct Rule {
  const char* key;
  const char* timezone;
  double latitude;
  double longitude;
  Day day;
  int daysAhead;
  double sunAltitude;
  bool inTheMorning;
  int minutesAfter;
};

constexpr double kHorizon = -0.833;
constexpr double kBlueHour = -5;
constexpr double kNight = -18;

constexpr std::array kRules = {
    Rule{"lighthouse", "Europe/Madrid", 36.7217, -2.1931, Day::kAhead, 1, kNight, false, 30},
    Rule{"harbour", "Europe/Athens", 35.5193, 24.0168, Day::kAhead, 2, kHorizon, true, 0},
    Rule{"cathedral", "Europe/London", 51.0650, -1.7975, Day::kFullMoon, 0, kHorizon, false, 35},
    Rule{"bridge", "America/New_York", 40.7061, -73.9969, Day::kAhead, 4, kBlueHour, false, 0},
    Rule{"fuji", "Asia/Tokyo", 35.5234, 138.7458, Day::kAhead, 6, kHorizon, true, -10},
    Rule{"lamps", "Asia/Kathmandu", 27.7215, 85.3620, Day::kAhead, 8, kHorizon, false, 15},
    Rule{"mountain", "Africa/Johannesburg", -33.8062, 18.4667, Day::kAhead, 10, kHorizon, false,
         -45},
    Rule{"perseids", "America/Los_Angeles", 34.0122, -116.1681, Day::kPerseids, 0, kNight, false,
         120},
};

int civilDayOf(Date date, const TimeZone& zone) {
  const double wall = date.timeIntervalSinceReferenceDate() + zone.secondsFromGMTForDate(date);
  return static_cast<int>(std::floor(wall / kSecondsPerDay));
}

/// Counts mean months from the full moon of 2000-01-21 04:40 UTC; at most 14 hours off.
Date fullMoonAfter(Date date) {
  constexpr double kMonth = 29.530588853 * kSecondsPerDay;
  constexpr double kFullMoon = -345.8056 * kSecondsPerDay;
  const double months = std::ceil((date.timeIntervalSinceReferenceDate() - kFullMoon) / kMonth);
  return Date(kFullMoon + months * kMonth);
}

int perseidsFrom(int civilDay) {
  using namespace std::chrono;
  constexpr auto kReferenceDay = sys_days(year(2001) / 1 / 1);
  const year_month_day today(kReferenceDay + days(civilDay));
  const auto night = [&](year y) { return (sys_days(y / 8 / 11) - kReferenceDay).count(); };
  const auto next = night(today.year());
  return static_cast<int>(next < civilDay ? night(today.year() + years(1)) : next);
}

int civilDayFor(const Rule& rule, Date now, const TimeZone& zone) {
  const Date tomorrow = now.dateByAddingTimeInterval(kSecondsPerDay);
  switch (rule.day) {
    case Day::kFullMoon:
      return civilDayOf(fullMoonAfter(tomorrow), zone);
    case Day::kPerseids:
      return perseidsFrom(civilDayOf(tomorrow, zone));
    case Day::kAhead:
      break;
  }
  return civilDayOf(now, zone) + rule.daysAhead;
}

/// Returns when the sun's centre passes `altitude` (degrees) on a civil day, counted from
/// 2001-01-01, at a place (degrees, north and east positive), or is nearest to that altitude.
/// Uses the sunrise equation; a few minutes off.
Date sunPassesAltitude(double altitude, bool inTheMorning, int civilDay, double latitude,
                       double longitude) {
  constexpr double kDegree = std::numbers::pi / 180;
  constexpr double kDaysSince2000 = 366;       // from noon of 2000-01-01 to noon of 2001-01-01
  constexpr double kNoonOfReferenceDay = 0.5;  // in days since the reference date
  const double noon = civilDay + kDaysSince2000 - longitude / 360;
  const double anomaly = (357.5291 + 0.98560028 * noon) * kDegree;
  const double center =
      1.9148 * std::sin(anomaly) + 0.02 * std::sin(2 * anomaly) + 0.0003 * std::sin(3 * anomaly);
  const double eclipticLongitude = anomaly + (center + 180 + 102.9372) * kDegree;
  const double transit = noon - kDaysSince2000 + kNoonOfReferenceDay + 0.0053 * std::sin(anomaly) -
                         0.0069 * std::sin(2 * eclipticLongitude);
  const double sinDeclination = std::sin(eclipticLongitude) * std::sin(23.4397 * kDegree);
  const double cosHourAngle =
      (std::sin(altitude * kDegree) - std::sin(latitude * kDegree) * sinDeclination) /
      (std::cos(latitude * kDegree) * std::sqrt(1 - sinDeclination * sinDeclination));
  const double halfArc = std::acos(std::clamp(cosHourAngle, -1.0, 1.0)) / (2 * std::numbers::pi);
  return Date((transit + (inTheMorning ? -halfArc : halfArc)) * kSecondsPerDay);
}

/// When the sun is where the rule wants it, rounded to five minutes.
Date dateFor(const Rule& rule, Date now) {
  const TimeZone zone = TimeZone::timeZoneOrDefault(rule.timezone);
  const Date passage =
      sunPassesAltitude(rule.sunAltitude, rule.inTheMorning, civilDayFor(rule, now, zone),
                        rule.latitude, rule.longitude);
  const double exact =
      passage.timeIntervalSinceReferenceDate() + rule.minutesAfter * kSecondsPerMinute;
  return Date(std::round(exact / kRounding) * kRounding);
}

/// Whether the store has the sample, in any language, with a date in the future.
Expected<bool> isPlanned(ManagedObjectContext& context, const Rule& rule, Date now) {
  FetchRequest request;
  request.predicate = Predicate::equal("latitude", rule.latitude);
  return fetchPlans(context, request).map([&](const Plans& plans) {
    return std::any_of(plans.begin(), plans.end(), [&](const auto& plan) {
      return plan->longitude() == rule.longitude && plan->date() >= now;
    });
  });
}

Expected<void> addSample(ManagedObjectContext& context, const Rule& rule, Date now) {
  const auto plan =
      std::dynamic_pointer_cast<Planning>(context.insertNewObject(Planning::kEntityName));
  if (!plan) {
    return tl::unexpected(failure(kExitInternal, "store sample", "the model has no plans"));
  }
  const std::string key = "plan_sample_" + std::string(rule.key);
  plan->setName(key + "_name");
  plan->setNotes(key + "_notes");
  plan->setTimezone(rule.timezone);
  plan->setLatitude(rule.latitude);
  plan->setLongitude(rule.longitude);
  plan->setDate(dateFor(rule, now));
  // Only the sample: translating the user's plans would turn absent notes into empty ones.
  VantrelPrefiller::translatePlanning(*plan);
  return {};
}

}  // namespace

int addSamplePlans(Console& console) {
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const Date now = Clock::sharedClock().now();
  int added = 0;
  for (const auto& rule : kRules) {
    const auto planned = isPlanned(**context, rule, now);
    if (!planned) return console.fail(planned.error());
    if (*planned) continue;
    if (const auto done = addSample(**context, rule, now); !done) return console.fail(done.error());
    ++added;
  }
  if (const auto saved = (*context)->save(); !saved) return console.fail(saved.error());
  console.note(std::to_string(added) + " sample plans added; see them with vantrel today");
  return kExitDone;
}

}  // namespace vantrel::cli
