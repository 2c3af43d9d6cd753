#include "today/PlanDescription.h"

#include "base/Log.h"
#include "platform/Bundle.h"
#include "platform/TimeZone.h"

namespace vantrel {

namespace {

std::string text(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Today");
}

TimeZone zoneOf(const Planning& plan) {
  auto zone = TimeZone::timeZoneWithName(plan.timezone().value_or(""));
  return zone ? *zone : TimeZone::defaultTimeZone();
}

}  // namespace

PlanDescription::PlanDescription() {
  formatter_.setLocale(Locale::currentLocale());
  formatter_.setDateStyle(DateFormatter::Style::kFull);
  formatter_.setTimeStyle(DateFormatter::Style::kShort);
}

std::string PlanDescription::name(const Planning& plan) const {
  std::string title = plan.name().value_or("");
  if (title.empty()) title = text("today_plan_untitled");
  return title + ", " + dateText(plan, false);
}

std::string PlanDescription::details(const Planning& plan) const {
  return dateText(plan, true);
}

std::string PlanDescription::dateText(const Planning& plan, bool withLocalTime) const {
  const auto date = plan.date();
  if (!date) return text("today_plan_no_date");
  const TimeZone zone = zoneOf(plan);
  const TimeZone here = TimeZone::defaultTimeZone();
  formatter_.setTimeZone(zone);
  const std::string there = formatter_.stringFromDate(*date);
  if (!withLocalTime || zone.secondsFromGMTForDate(*date) == here.secondsFromGMTForDate(*date)) {
    return stringWithFormat(text("today_plan_row_description"), {there, zone.name()});
  }
  formatter_.setTimeZone(here);
  return stringWithFormat(text("today_plan_row_description_local"),
                          {there, zone.name(), formatter_.stringFromDate(*date)});
}

}  // namespace vantrel
