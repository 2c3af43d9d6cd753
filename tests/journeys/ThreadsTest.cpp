// Calls everything documented as thread-safe from several threads, from the first use on, for the
// thread sanitizer; without it, all threads must get the results of a single one.
#include <gtest/gtest.h>

#include <latch>
#include <thread>
#include <vector>

#include "base/Uuid.h"
#include "geo/GeodeticCalculator.h"
#include "objectstore/model/ManagedObjectID.h"
#include "platform/system/Bundle.h"
#include "platform/text/DateFormatter.h"
#include "platform/text/NumberFormatter.h"
#include "time/Calendar+CachedCalendar.h"
#include "time/Date+Ephemeris.h"
#include "time/DeviceSystemMajorVersion.h"
#include "time/Formatters.h"

namespace vantrel {
namespace {

std::string day(Date date) {
  using namespace ephemeris;
  PtDateTime record;
  ptDateTimeForDate(date, record);
  std::string text = weekdayAbbreviation(date);
  for (const double value :
       {dateWithPtDateTime(record, true).timeIntervalSinceReferenceDate(), modifiedJulianDay(date),
        dateWithStartDateTime(date).timeIntervalSinceReferenceDate(),
        dateByAddingNumberOfDays(date, 40).timeIntervalSinceReferenceDate(),
        firstDayOfYear(yearValue(date)).timeIntervalSinceReferenceDate(), timeAsFractionOfDay(date),
        static_cast<double>(weekday(date)), static_cast<double>(numberOfDaysInMonth(date))}) {
    text += " " + std::to_string(value);
  }
  return text;
}

/// Formats with formatters of this thread.
std::string formatted(Date date, const std::string& zone) {
  DateFormatter formatter;
  formatter.setTimeZone(TimeZone::timeZoneWithName(zone));
  formatter.setDateStyle(DateFormatter::Style::kLong);
  formatter.setTimeStyle(DateFormatter::Style::kShort);
  return formatter.stringFromDate(date) + Formatters::RFC3339DateFormatter().stringFromDate(date) +
         Formatters::dateTimeFormatterWithMediumMonthAndNoYear().stringFromDate(date) +
         Formatters::enUSPosixNumberFormatter().stringFromNumber(
             date.timeIntervalSinceReferenceDate());
}

std::string everything() {
  // First: a lock taken before by all threads would hide a missing one here.
  std::string text = Bundle::mainBundle().localizedString("week_day_abbr_mo", "", "Common");
  text += std::to_string(DeviceSystemMajorVersion());
  for (int i = 0; i < 12; ++i) {
    const Date date(7e8 + i * 2'600'000.0);
    for (const std::string zone : {"Europe/Madrid", "Asia/Kathmandu", "America/St_Johns"}) {
      text += day(date) + formatted(date, zone);
    }
    const auto curve =
        GeodeticCalculator().geodeticCurveBetweenSource({41.0 + i, 2.0}, 0, {42.0, 3.0}, 100);
    text += std::to_string(curve.startAzimuth());
    text +=
        ManagedObjectID::permanentID("store", "Entity" + std::to_string(i), 7).URIRepresentation();
    (void)ManagedObjectID::temporaryID("Planning").URIRepresentation();
    EXPECT_EQ(uuidString().size(), 36U);
  }
  return text;
}

TEST(Threads, GetTheResultsOfASingleThread) {
  std::vector<std::string> texts(4);
  std::latch start(static_cast<std::ptrdiff_t>(texts.size()));
  std::vector<std::thread> threads;
  for (auto& text : texts) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      text = everything();
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& text : texts) EXPECT_EQ(text, everything());
}

}  // namespace
}  // namespace vantrel
