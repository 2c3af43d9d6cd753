#include "platform/text/DateFormatter.h"

#include <unicode/datefmt.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/text/NumericDatePattern.h"

namespace vantrel {

namespace {

using Style = DateFormatter::Style;

struct DateStyleSettings {
  Style dateStyle = Style::kNone;
  Style timeStyle = Style::kNone;
  std::optional<std::string> pattern;
  friend bool operator==(const DateStyleSettings&, const DateStyleSettings&) = default;
};

icu::SimpleTimeZone fixedZone(int seconds) {
  const auto name = TimeZone::timeZoneForSecondsFromGMT(seconds).name();
  return {seconds * 1000, icu::UnicodeString::fromUTF8(name)};
}

icu::DateFormat::EStyle icuStyle(Style style) {
  using Icu = icu::DateFormat;
  constexpr std::array kStyles = {Icu::kNone, Icu::kShort, Icu::kMedium, Icu::kLong, Icu::kFull};
  return kStyles.at(static_cast<std::size_t>(style));
}

std::unique_ptr<icu::SimpleDateFormat> build(const DateStyleSettings& settings,
                                             const icu::Locale& locale) {
  // Every new formatter needs ICU's default zone. Detecting the device's zone would take longer
  // than creating the formatter, and its rules are not used.
  static std::once_flag once;
  std::call_once(once, [] { icu::TimeZone::setDefault(fixedZone(0)); });

  if (settings.pattern) {
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(
        icu::UnicodeString::fromUTF8(*settings.pattern), locale, status);
    if (U_FAILURE(status)) return nullptr;
    return formatter;
  }
  // ICU would use default styles.
  if (settings == DateStyleSettings{}) return nullptr;
  std::unique_ptr<icu::DateFormat> formatter(icu::DateFormat::createDateTimeInstance(
      icuStyle(settings.dateStyle), icuStyle(settings.timeStyle), locale));
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(formatter.get());
  if (simple) (void)formatter.release();
  return std::unique_ptr<icu::SimpleDateFormat>(simple);
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

std::string patternOf(const icu::SimpleDateFormat& formatter) {
  icu::UnicodeString pattern;
  return utf8(formatter.toPattern(pattern));
}

/// The formatter's pattern, if `NumericDatePattern` writes the same texts.
std::optional<NumericDatePattern> numericPattern(const icu::SimpleDateFormat& formatter,
                                                 const std::vector<DatePatternPiece>& pieces) {
  const auto* numbers = dynamic_cast<const icu::DecimalFormat*>(formatter.getNumberFormat());
  if (!numbers || std::string_view(formatter.getCalendar()->getType()) != "gregorian") {
    return std::nullopt;
  }
  // Some locales use other number formats for some fields.
  for (const auto& piece : pieces) {
    if (piece.field &&
        formatter.getNumberFormatForField(static_cast<char16_t>(piece.field)) != numbers) {
      return std::nullopt;
    }
  }
  NumericDatePattern::Symbols symbols;
  using Names = icu::DecimalFormatSymbols;
  const auto digit = [&](int name) {
    return utf8(numbers->getDecimalFormatSymbols()->getConstSymbol(
        static_cast<Names::ENumberFormatSymbol>(name)));
  };
  symbols.digits[0] = digit(Names::kZeroDigitSymbol);
  for (int i = 1; i < 10; ++i) {
    symbols.digits.at(static_cast<std::size_t>(i)) = digit(Names::kOneDigitSymbol + i - 1);
  }
  int32_t count = 0;
  const auto* halves = formatter.getDateFormatSymbols()->getAmPmStrings(count);
  for (int32_t i = 0; i < std::min(count, 2); ++i) {
    symbols.halves.at(static_cast<std::size_t>(i)) = utf8(halves[i]);
  }
  return NumericDatePattern::parsed(pieces, std::move(symbols));
}

}  // namespace

struct DateFormatter::State {
  struct Built {
    Built(DateStyleSettings c, std::unique_ptr<icu::SimpleDateFormat> f)
        : settings(std::move(c)),
          formatter(std::move(f)),
          calendar(formatter->getCalendar()->clone()) {
      const auto pieces = datePatternPieces(patternOf(*formatter));
      numeric = numericPattern(*formatter, pieces);
      for (const auto& piece : pieces) {
        ending = piece.literal;
        if (std::string_view("zZOvVXx").find(piece.field) != std::string_view::npos) hasZone = true;
      }
      formatter->setTimeZone(fixedZone(0));
      formatter->setLenient(false);
      calendar->setTimeZone(fixedZone(0));
    }

    /// ICU only sees fixed offsets, as its own zone rules are older than the system's. Without a
    /// zone field, the text is that of the wall time in GMT, which saves ICU a new zone for each
    /// offset. Passing a calendar saves ICU a copy for each text.
    std::string text(Date date, int offset) {
      double seconds = date.timeIntervalSince1970();
      if (!hasZone) {
        seconds += offset;
      } else if (offset != calendarOffset) {
        calendar->setTimeZone(fixedZone(offset));
        calendarOffset = offset;
      }
      if (numeric) {
        if (auto text = numeric->text(seconds)) return *std::move(text);
      }
      UErrorCode status = U_ZERO_ERROR;
      calendar->setTime(seconds * U_MILLIS_PER_SECOND, status);
      icu::UnicodeString result;
      icu::FieldPosition none(icu::FieldPosition::DONT_CARE);
      return utf8(formatter->format(*calendar, result, none));
    }

    DateStyleSettings settings;
    std::unique_ptr<icu::SimpleDateFormat> formatter;
    std::optional<NumericDatePattern> numeric;
    bool hasZone = false;  ///< Whether texts contain the zone or offset.
    std::string ending;    ///< The literal text after the last field.
    std::unique_ptr<icu::Calendar> calendar;
    int calendarOffset = 0;
  };

  Locale locale = Locale::currentLocale();
  std::optional<TimeZone> zone;
  DateStyleSettings settings;
  std::vector<Built> built;

  TimeZone timeZone() const { return zone ? *zone : TimeZone::defaultTimeZone(); }

  /// The formatter for the current settings; null if both styles are `kNone`. Keeps the others, as
  /// callers alternate between two styles for each date.
  Built* current() {
    for (auto& one : built) {
      if (one.settings == settings) return &one;
    }
    auto formatter = build(settings, icu::Locale(locale.localeIdentifier().c_str()));
    if (!formatter) return nullptr;
    return &built.emplace_back(settings, std::move(formatter));
  }
};

DateFormatter::DateFormatter() : state_(std::make_unique<State>()) {}
DateFormatter::~DateFormatter() = default;
DateFormatter::DateFormatter(DateFormatter&&) noexcept = default;
DateFormatter& DateFormatter::operator=(DateFormatter&&) noexcept = default;

void DateFormatter::setLocale(const Locale& locale) {
  state_->locale = locale;
  state_->built.clear();
}

void DateFormatter::setTimeZone(const std::optional<TimeZone>& zone) {
  state_->zone = zone;
}

void DateFormatter::setDateStyle(Style style) {
  state_->settings.dateStyle = style;
  state_->settings.pattern.reset();
}

void DateFormatter::setTimeStyle(Style style) {
  state_->settings.timeStyle = style;
  state_->settings.pattern.reset();
}

void DateFormatter::setDateFormat(std::string_view pattern) {
  state_->settings.pattern = pattern;
  state_->built.clear();
}

std::string DateFormatter::dateFormatFromTemplate(std::string_view fields, const Locale& locale) {
  std::string text;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateTimePatternGenerator> generator(
      icu::DateTimePatternGenerator::createInstance(icu::Locale(locale.localeIdentifier().c_str()),
                                                    status));
  if (U_FAILURE(status)) return text;
  const auto pattern = generator->getBestPattern(icu::UnicodeString::fromUTF8(fields), status);
  return U_FAILURE(status) ? text : pattern.toUTF8String(text);
}

std::string DateFormatter::dateFormat() const {
  const auto* built = state_->current();
  return built ? patternOf(*built->formatter) : std::string();
}

std::string DateFormatter::stringFromDate(Date date) const {
  auto* built = state_->current();
  if (!built || !std::isfinite(date.timeIntervalSinceReferenceDate())) return {};
  return built->text(date, state_->timeZone().secondsFromGMTForDate(date));
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
  const auto* built = state_->current();
  // ICU accepts texts that end before the last literal.
  if (!built || !text.ends_with(built->ending)) return std::nullopt;
  const auto source = icu::UnicodeString::fromUTF8(text);
  icu::ParsePosition position;
  const UDate instant = built->formatter->parse(source, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != source.length() || source.isEmpty()) {
    return std::nullopt;
  }
  const auto date = Date::dateWithTimeIntervalSince1970(instant / U_MILLIS_PER_SECOND);
  if (built->hasZone) return date;
  return state_->timeZone().dateForWallSeconds(date.timeIntervalSinceReferenceDate());
}

}  // namespace vantrel
