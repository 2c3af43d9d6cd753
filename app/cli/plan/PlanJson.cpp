#include "cli/plan/PlanJson.h"

#include <nlohmann/json.hpp>

#include "base/Clock.h"
#include "base/Iso8601.h"
#include "cli/JsonText.h"
#include "cli/plan/PlanText.h"
#include "store/PlanLink.h"
#include "time/RelativeDay.h"

namespace vantrel::cli {

namespace {

Json jsonOfPlan(const Planning& plan) {
  const auto date = plan.date();
  const TimeZone zone = zoneOfPlan(plan);
  const int offset = date ? zone.secondsFromGMTForDate(*date) : 0;
  const Date now = Clock::sharedClock().now();
  const auto days = [&](const TimeZone& place) {
    return date && hasIso8601String(*date) ? Json(daysUntil(*date, place, now)) : Json();
  };
  return {
      {"uniqueIdentifier", orNull(plan.uniqueIdentifier())},
      {"uri", plan.objectID().URIRepresentation()},
      {"link", deepLink(plan)},
      {"name", orNull(plan.name())},
      {"notes", orNull(plan.notes())},
      {"date", jsonOfDate(date)},
      {"timezone", orNull(plan.timezone())},
      {"localDate", jsonOfDate(date, offset)},
      {"latitude", orNull(plan.latitude())},
      {"longitude", orNull(plan.longitude())},
      {"images", plan.imageCount()},
      {"started", date && hasIso8601String(*date) && *date <= now},
      {"daysUntil", days(zone)},
      {"daysUntilHere", days(TimeZone::defaultTimeZone())},
  };
}

Json jsonOfToday(const TodayList& today) {
  Json list = Json::array();
  for (const auto& row : today.rows) {
    Json object = jsonOfPlan(*row.plan);
    object["row"] = list.size();
    object["title"] = row.title;
    object["dateText"] = row.dateText;
    list.push_back(std::move(object));
  }
  return {{"plans", std::move(list)},
          {"message", orNull(today.message)},
          {"mode", today.isExpanded ? "expanded" : "compact"}};
}

}  // namespace

std::string jsonText(const Planning& plan) {
  return jsonText(jsonOfPlan(plan));
}

std::string jsonText(const TodayList& today) {
  return jsonText(jsonOfToday(today));
}

std::string jsonLine(const TodayList& today) {
  return jsonLine(jsonOfToday(today));
}

void printJson(PlanSource& plans, const TextSink& print) {
  print("{\n  \"plans\": [");
  const char* lineBreak = "\n    ";
  bool isEmpty = true;
  plans.forEach([&](const Planning& plan) {
    print(isEmpty ? lineBreak : std::string(",") + lineBreak);
    isEmpty = false;
    std::string text = jsonText(plan);
    text.pop_back();
    // Line breaks in strings are escaped: all others belong to the layout.
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
      text.replace(at, 1, lineBreak);
    }
    print(text);
  });
  print(isEmpty ? "]\n}\n" : "\n  ]\n}\n");
}

}  // namespace vantrel::cli
