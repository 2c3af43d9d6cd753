#include "cli/exchange/ExchangeText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/Iso8601.h"
#include "cli/exchange/PlanDraft.h"
#include "cli/plan/PlanText.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

std::string decimalText(double number) {
  std::array<char, 512> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed)
          .ptr;
  return {digits.data(), end};
}

std::string calendarText(std::string_view text) {
  std::string result = fileText(text);
  std::erase(result, '\r');
  return result;
}

std::string readCalendarText(std::string_view text) {
  const std::string kept = calendarText(text);
  const auto first = kept.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return kept.substr(first, kept.find_last_not_of(" \t") + 1 - first);
}

bool isSameRounded(const Value& stored, const Value& read) {
  const auto* date = std::get_if<Date>(&stored);
  const auto* readDate = std::get_if<Date>(&read);
  if (date && readDate) {
    return std::floor(date->timeIntervalSinceReferenceDate()) ==
           readDate->timeIntervalSinceReferenceDate();
  }
  const auto* text = std::get_if<std::string>(&stored);
  const auto* readText = std::get_if<std::string>(&read);
  if (text && readText) return readCalendarText(*text) == readCalendarText(*readText);
  const auto* number = std::get_if<double>(&stored);
  const auto* readNumber = std::get_if<double>(&read);
  return number && readNumber && std::fabs(*number - *readNumber) <= kPlacePrecision;
}

std::optional<LocationCoordinate2D> placeOfPlan(const Planning& plan) {
  const auto latitude = plan.latitude();
  const auto longitude = plan.longitude();
  // Negated, so that it also rejects NaN.
  if (!latitude || !longitude || !(std::fabs(*latitude) <= 90 && std::fabs(*longitude) <= 180)) {
    return std::nullopt;
  }
  return LocationCoordinate2D{*latitude, *longitude};
}

std::string instantText(const Planning& plan) {
  const auto date = plan.date();
  return date ? iso8601String(*date) : std::string();
}

std::string localText(const Planning& plan) {
  const auto date = plan.date();
  return date ? iso8601String(*date, zoneOfPlan(plan).secondsFromGMTForDate(*date)) : std::string();
}

}  // namespace vantrel::cli
