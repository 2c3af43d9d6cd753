#include "today/reminders/ReminderSchedule.h"

#include <algorithm>
#include <charconv>

namespace vantrel {

namespace {

std::optional<std::chrono::minutes> parseLeadTime(std::string_view text) {
  int count = 0;
  const char* end = text.data() + text.size();
  const auto number = std::from_chars(text.data(), end, count);
  if (number.ec != std::errc() || end - number.ptr != 1) return std::nullopt;
  const char unit = *number.ptr;
  const int minutesOfUnit = unit == 'm' ? 1 : unit == 'h' ? 60 : unit == 'd' ? 24 * 60 : 0;
  // Compared before multiplying: the product might overflow.
  if (minutesOfUnit == 0 || count < 1 || count > kLongestLeadTime.count() / minutesOfUnit)
    return std::nullopt;
  return std::chrono::minutes(count * minutesOfUnit);
}

bool isShown(const PlannedShoot& plan, std::chrono::minutes leadTime,
             const std::vector<Reminder>& shown) {
  return std::ranges::any_of(shown, [&](const Reminder& reminder) {
    return reminder.identifier == plan.identifier && reminder.date == plan.date &&
           reminder.leadTime <= leadTime;
  });
}

}  // namespace

std::optional<std::vector<std::chrono::minutes>> parseLeadTimes(std::string_view text) {
  std::vector<std::chrono::minutes> leadTimes;
  if (text == "off") return leadTimes;
  while (true) {
    const auto comma = text.find(',');
    const auto leadTime = parseLeadTime(text.substr(0, comma));
    if (!leadTime) return std::nullopt;
    leadTimes.push_back(*leadTime);
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  std::ranges::sort(leadTimes);
  leadTimes.erase(std::unique(leadTimes.begin(), leadTimes.end()), leadTimes.end());
  return leadTimes;
}

ReminderSchedule ReminderSchedule::compute(const std::vector<PlannedShoot>& plans,
                                           const std::vector<std::chrono::minutes>& leadTimes,
                                           const std::vector<Reminder>& shown, Date now) {
  ReminderSchedule schedule;
  for (const PlannedShoot& plan : plans) {
    if (plan.date <= now) continue;
    bool due = false;
    for (const auto leadTime : leadTimes) {
      const auto seconds = std::chrono::duration<double>(leadTime).count();
      const Date instant = plan.date.dateByAddingTimeInterval(-seconds);
      if (instant > now) {
        if (!isShown(plan, leadTime, shown) && (!schedule.next || instant < *schedule.next))
          schedule.next = instant;
      } else if (!due && !isShown(plan, leadTime, shown)) {
        schedule.due.push_back({plan.identifier, plan.date, leadTime});
        due = true;
      }
    }
  }
  return schedule;
}

}  // namespace vantrel
