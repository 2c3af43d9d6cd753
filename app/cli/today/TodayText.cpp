#include "cli/today/TodayText.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "base/Clock.h"
#include "base/StringFormat.h"
#include "cli/JsonText.h"
#include "cli/plan/PlanText.h"
#include "common/DayWords.h"
#include "common/TerminalText.h"
#include "platform/system/Bundle.h"
#include "platform/text/Calendar.h"
#include "platform/text/DateFormatter.h"
#include "widget/TodayEventsView.h"

namespace vantrel::cli {

namespace {

bool hasBegun(const TodayRow& row) {
  return row.plan->date() <= Clock::sharedClock().now();
}

/// Null if there are no rows.
const TodayRow* nextRow(const TodayList& today) {
  if (today.rows.empty()) return nullptr;
  const auto next = std::find_if_not(today.rows.begin(), today.rows.end(), &hasBegun);
  return next == today.rows.end() ? &today.rows.back() : &*next;
}

std::string rowLine(const TodayRow& row) {
  return row.dateText + "  " + shown(row.title);
}

std::string stateOf(const TodayRow* next) {
  if (!next) return "none";
  if (hasBegun(*next)) return "started";
  const Calendar calendar = Calendar::currentCalendar();
  const auto day = calendar.components(*next->plan->date());
  const auto now = calendar.components(Clock::sharedClock().now());
  return day.year == now.year && day.month == now.month && day.day == now.day ? "today" : "later";
}

/// Escapes markup, which status bars parse.
std::string inMarkup(const std::string& text) {
  constexpr std::string_view kSpecial = "&<>\"'";
  constexpr std::array kNames = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
  std::string result;
  for (const char c : text) {
    const auto at = kSpecial.find(c);
    result += at == std::string_view::npos ? std::string(1, c) : kNames[at];
  }
  return result;
}

std::string barObject(const std::string& text, const std::string& tooltip,
                      const std::string& state) {
  return jsonLine({{"text", text}, {"tooltip", tooltip}, {"class", state}, {"alt", state}});
}

/// "Europe/Athens, 5:20 AM here"; `nullopt` if the device's wall time is the same as the plan's.
std::optional<std::string> localText(const Planning& plan) {
  const auto date = plan.date();
  const TimeZone zone = zoneOfPlan(plan);
  if (!date || !hereText(*date, zone)) return std::nullopt;
  using Style = DateFormatter::Style;
  DateFormatter& formatter = TodayEventsView::sharedDateFormatter();
  const auto styled = [&](Style day, Style time, const std::optional<TimeZone>& clock) {
    formatter.setTimeZone(clock);
    formatter.setDateStyle(day);
    formatter.setTimeStyle(time);
    return formatter.stringFromDate(*date);
  };
  const std::string day = styled(Style::kShort, Style::kNone, std::nullopt);
  const bool sameDay = day == styled(Style::kShort, Style::kNone, zone);
  const std::string time = styled(Style::kNone, Style::kShort, std::nullopt);
  return stringWithFormat(Bundle::mainBundle().localizedString("today_local_time", "", "Today"),
                          {zone.name(), sameDay ? time : day + " " + time});
}

}  // namespace

std::string todayText(const TodayList& today, const Console& console) {
  std::string text;
  if (today.message) text += *today.message + "\n";
  for (const auto& row : today.rows) {
    if (!text.empty()) text += "\n";
    text += console.bold(shown(row.title)) + "\n  " + row.dateText;
    const auto day = Console::isTerminal() ? dayWords(*row.plan) : std::nullopt;
    if (day) text += "  " + *day;
    if (const auto local = localText(*row.plan)) text += "  " + console.dim(*local);
    text += "\n";
  }
  return text;
}

std::string nextPlanLine(const TodayList& today) {
  const TodayRow* next = nextRow(today);
  return (next ? rowLine(*next) : today.message.value_or("")) + "\n";
}

std::string barLine(const TodayList& today) {
  const TodayRow* next = nextRow(today);
  std::string tooltip = inMarkup(today.message.value_or(""));
  for (const auto& row : today.rows) {
    if (!tooltip.empty()) tooltip += "\n";
    tooltip += "<b>" + inMarkup(shown(row.title)) + "</b>\n" + inMarkup(row.dateText);
    if (const auto local = localText(*row.plan)) tooltip += "  " + inMarkup(*local);
  }
  return barObject(next ? inMarkup(rowLine(*next)) : "", tooltip, stateOf(next));
}

std::string barLine(const Error& error) {
  const std::string text =
      Bundle::mainBundle().localizedString("persistent_store_unresolved_error_title", "", "Common");
  return barObject(inMarkup(text), inMarkup(printable(error.localizedDescription)), "error");
}

}  // namespace vantrel::cli
