#include "platform/text/NumericDatePattern.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "base/Ascii.h"

namespace vantrel {

namespace {

constexpr int kDaySeconds = 86400;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerMinute = 60;
constexpr std::int64_t kFirstDay = -141'349;  // 1583-01-01
constexpr std::int64_t kLastDay = 2'932'896;  // 9999-12-31

}  // namespace

std::optional<NumericDatePattern> NumericDatePattern::parsed(std::string_view pattern,
                                                             Symbols symbols) {
  NumericDatePattern result;
  result.symbols_ = std::move(symbols);
  bool quoted = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    const std::size_t length = std::min(pattern.find_first_not_of(c, i), pattern.size()) - i;
    if (c == '\'') {
      // Two in a row are one to be written, within quotes too.
      for (std::size_t pair = 0; pair < length / 2; ++pair) result.addLiteral(c);
      quoted = quoted != (length % 2 == 1);
    } else if (isAsciiLetter(c) && !quoted) {
      if (!result.add(c, length)) return std::nullopt;
    } else {
      for (std::size_t k = 0; k < length; ++k) result.addLiteral(c);
    }
    i += length;
  }
  return result;
}

bool NumericDatePattern::add(char field, std::size_t length) {
  constexpr std::string_view kNumbers = "dMHhms";
  const bool known = (kNumbers.find(field) != std::string_view::npos && length <= 2) ||
                     (field == 'y' && length <= 4) || (field == 'a' && length == 1);
  if (known) pieces_.push_back({field, length, {}});
  return known;
}

void NumericDatePattern::addLiteral(char c) {
  if (pieces_.empty() || pieces_.back().field) pieces_.emplace_back();
  pieces_.back().literal += c;
}

void NumericDatePattern::write(int number, std::size_t least, std::string& text) const {
  constexpr std::size_t kMostDigits = 4;
  std::array<std::uint8_t, kMostDigits> digits{};
  std::size_t count = 0;
  for (; number > 0 || count < least; number /= 10) {
    digits.at(count++) = static_cast<std::uint8_t>(number % 10);
  }
  while (count > 0) text += symbols_.digits.at(digits.at(--count));
}

std::optional<std::string> NumericDatePattern::text(double wallSeconds) const {
  const double days = std::floor(wallSeconds / kDaySeconds);
  if (!(days >= kFirstDay && days <= kLastDay)) return std::nullopt;
  const std::chrono::year_month_day day(
      std::chrono::sys_days(std::chrono::days(static_cast<std::int32_t>(days))));
  const int second = static_cast<int>(std::floor(wallSeconds - days * kDaySeconds));
  const int hour = second / kSecondsPerHour;
  std::string text;
  for (const auto& [field, length, literal] : pieces_) {
    switch (field) {
      case 'y': {
        const int year = static_cast<int>(day.year());
        write(length == 2 ? year % 100 : year, length, text);
        break;
      }
      case 'M':
        write(static_cast<int>(static_cast<unsigned>(day.month())), length, text);
        break;
      case 'd':
        write(static_cast<int>(static_cast<unsigned>(day.day())), length, text);
        break;
      case 'H':
        write(hour, length, text);
        break;
      case 'h':
        write(hour % 12 == 0 ? 12 : hour % 12, length, text);
        break;
      case 'm':
        write(second / kSecondsPerMinute % 60, length, text);
        break;
      case 's':
        write(second % kSecondsPerMinute, length, text);
        break;
      case 'a':
        text += symbols_.halves.at(hour < 12 ? 0 : 1);
        break;
      default:
        text += literal;
    }
  }
  return text;
}

}  // namespace vantrel
