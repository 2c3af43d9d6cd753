#include "today/sheet/PlanDescription.h"

#include "base/StringFormat.h"
#include "common/DayWords.h"
#include "platform/text/TimeZone.h"
#include "today/InterfaceText.h"

namespace vantrel {

PlanDescription::PlanDescription() {
  formatter_.setLocale(Locale::currentLocale());
  formatter_.setDateStyle(DateFormatter::Style::kFull);
  formatter_.setTimeStyle(DateFormatter::Style::kShort);
}

std::string PlanDescription::name(const Planning& plan) const {
  std::string title = plan.name().value_or("");
  if (title.empty()) title = localized("today_plan_untitled");
  return title + ", " + dateText(plan, false);
}

std::string PlanDescription::details(const Planning& plan) const {
  // The date includes the weekday.
  const auto day = dayWords(plan, false);
  return dateText(plan, true) + (day ? ", " + *day : "");
}

std::optional<PlanDescription::When> PlanDescription::when(const Planning& plan) const {
  const auto date = plan.date();
  if (!date) return std::nullopt;
  const TimeZone here = TimeZone::defaultTimeZone();
  const TimeZone zone = TimeZone::timeZoneOrDefault(plan.timezone());
  formatter_.setTimeZone(zone);
  When when{formatter_.stringFromDate(*date), zone.name(), *dayWords(plan, false), std::nullopt};
  if (zone.secondsFromGMTForDate(*date) != here.secondsFromGMTForDate(*date)) {
    formatter_.setTimeZone(here);
    when.here = formatter_.stringFromDate(*date);
  }
  return when;
}

std::string PlanDescription::dateText(const Planning& plan, bool withLocalTime) const {
  const auto when = this->when(plan);
  if (!when) return localized("today_plan_no_date");
  if (!withLocalTime || !when->here) {
    return stringWithFormat(localized("today_plan_row_description"), {when->there, when->zone});
  }
  return stringWithFormat(localized("today_plan_row_description_local"),
                          {when->there, when->zone, *when->here});
}

}  // namespace vantrel
