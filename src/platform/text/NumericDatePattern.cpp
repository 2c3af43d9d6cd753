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

bool isNumeric(const DatePatternPiece& piece) {
  const auto& [field, length, literal] = piece;
  return field == 0 ||
         (std::string_view("dMHhms").find(field) != std::string_view::npos && length <= 2) ||
         (field == 'y' && length <= 4) || (field == 'a' && length == 1);
}

}  // namespace

std::vector<DatePatternPiece> datePatternPieces(std::string_view pattern) {
  std::vector<DatePatternPiece> pieces;
  bool isQuoted = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    const std::size_t length = std::min(pattern.find_first_not_of(c, i), pattern.size()) - i;
    i += length;
    if (isAsciiLetter(c) && !isQuoted) {
      pieces.push_back({c, length, {}});
      continue;
    }
    if (pieces.empty() || pieces.back().field) pieces.emplace_back();
    // Two quotes are a literal quote, in quoted text too.
    pieces.back().literal.append(c == '\'' ? length / 2 : length, c);
    if (c == '\'' && length % 2 == 1) isQuoted = !isQuoted;
  }
  return pieces;
}

std::optional<NumericDatePattern> NumericDatePattern::parsed(std::vector<DatePatternPiece> pieces,
                                                             Symbols symbols) {
  if (!std::all_of(pieces.begin(), pieces.end(), isNumeric)) return std::nullopt;
  NumericDatePattern result;
  result.pieces_ = std::move(pieces);
  result.symbols_ = std::move(symbols);
  return result;
}

void NumericDatePattern::write(int number, std::size_t least, std::string& text) const {
  const std::string digits = std::to_string(number);
  for (std::size_t i = digits.size(); i < least; ++i) text += symbols_.digits[0];
  for (const char c : digits) text += symbols_.digits.at(static_cast<std::size_t>(c - '0'));
}

std::optional<std::string> NumericDatePattern::text(double wallSeconds) const {
  const double days = std::floor(wallSeconds / kDaySeconds);
  if (!(days >= kFirstDay && days <= kLastDay)) return std::nullopt;
  const std::chrono::year_month_day day(
      std::chrono::sys_days(std::chrono::days(static_cast<std::int32_t>(days))));
  const int second = static_cast<int>(std::floor(wallSeconds - days * kDaySeconds));
  const int hour = second / kSecondsPerHour;
  constexpr std::string_view kFields = "yMdHhms";
  const std::array numbers = {static_cast<int>(day.year()),
                              static_cast<int>(static_cast<unsigned>(day.month())),
                              static_cast<int>(static_cast<unsigned>(day.day())),
                              hour,
                              hour % 12 == 0 ? 12 : hour % 12,
                              second / kSecondsPerMinute % 60,
                              second % kSecondsPerMinute};
  std::string text;
  for (const auto& [field, length, literal] : pieces_) {
    if (field == 0) {
      text += literal;
    } else if (field == 'a') {
      text += symbols_.halves.at(hour < 12 ? 0 : 1);
    } else {
      const int number = numbers.at(kFields.find(field));
      write(field == 'y' && length == 2 ? number % 100 : number, length, text);
    }
  }
  return text;
}

}  // namespace vantrel
