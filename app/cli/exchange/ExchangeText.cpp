#include "cli/exchange/ExchangeText.h"

#include <unicode/utf8.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "base/Iso8601.h"
#include "cli/plan/PlanText.h"

namespace vantrel::cli {

namespace {

bool isXmlCharacter(UChar32 c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c != 0xfffe && c != 0xffff;
}

}  // namespace

std::string decimalText(double number) {
  std::array<char, 512> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed)
          .ptr;
  return {digits.data(), end};
}

std::string xmlText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  const auto size = static_cast<std::int32_t>(text.size());
  for (std::int32_t end = 0; end < size;) {
    const std::int32_t start = end;
    UChar32 value = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // in the macro
    U8_NEXT(text.data(), end, size, value);
#pragma GCC diagnostic pop
    if (isXmlCharacter(value)) {
      result += text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    } else {
      result += "\xEF\xBF\xBD";
    }
  }
  return result;
}

std::string calendarText(std::string_view text) {
  std::string result = xmlText(text);
  std::erase(result, '\r');
  return result;
}

std::optional<LocationCoordinate2D> placeOfPlan(const Planning& plan) {
  const auto latitude = plan.latitude();
  const auto longitude = plan.longitude();
  // Also false for what is not a number.
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
