#include "cli/PlanJson.h"

#include <nlohmann/json.hpp>

#include "base/Iso8601.h"
#include "base/PercentEncoding.h"
#include "cli/JsonText.h"
#include "cli/PlanText.h"
#include "platform/Clock.h"

namespace vantrel::cli {

namespace {

template <typename T>
Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json instant(std::optional<Date> date, int offsetSeconds = 0) {
  const std::string text = date ? iso8601String(*date, offsetSeconds) : std::string();
  return text.empty() ? Json(nullptr) : Json(text);
}

Json jsonOfPlan(const Planning& plan) {
  const auto date = plan.date();
  const int offset = date ? zoneOfPlan(plan).secondsFromGMTForDate(*date) : 0;
  return {
      {"uniqueIdentifier", orNull(plan.uniqueIdentifier())},
      {"uri", plan.objectID().URIRepresentation()},
      {"link", deepLink(plan)},
      {"name", orNull(plan.name())},
      {"notes", orNull(plan.notes())},
      {"date", instant(date)},
      {"timezone", orNull(plan.timezone())},
      {"localDate", instant(date, offset)},
      {"latitude", orNull(plan.latitude())},
      {"longitude", orNull(plan.longitude())},
      {"images", plan.imageCount()},
      {"started", date && *date <= Clock::sharedClock().now()},
  };
}

}  // namespace

std::string deepLink(const Planning& plan) {
  return "vantrel://plan?id=" +
         percentEncoded(plan.objectID().URIRepresentation(), kUrlHostAllowedCharacterSet);
}

std::string jsonText(const Planning& plan) {
  return jsonText(jsonOfPlan(plan));
}

std::string jsonText(const std::vector<std::shared_ptr<Planning>>& plans) {
  Json list = Json::array();
  for (const auto& plan : plans) list.push_back(jsonOfPlan(*plan));
  return jsonText(Json{{"plans", std::move(list)}});
}

std::string jsonText(const TodayList& today) {
  Json list = Json::array();
  for (const auto& row : today.rows) {
    Json object = jsonOfPlan(*row.plan);
    object["row"] = list.size();
    object["title"] = row.title;
    object["dateText"] = row.dateText;
    list.push_back(std::move(object));
  }
  return jsonText(Json{{"plans", std::move(list)},
                       {"message", orNull(today.message)},
                       {"mode", today.isExpanded ? "expanded" : "compact"}});
}

}  // namespace vantrel::cli
