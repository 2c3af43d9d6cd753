#include "platform/DateFormatter.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <mutex>
#include <utility>
#include <vector>

namespace vantrel {

namespace {

using Style = DateFormatter::Style;

struct Configuration {
  Style dateStyle = Style::kNone;
  Style timeStyle = Style::kNone;
  std::optional<std::string> pattern;
  friend bool operator==(const Configuration&, const Configuration&) = default;
};

icu::SimpleTimeZone fixedZone(int seconds) {
  const auto name = TimeZone::timeZoneForSecondsFromGMT(seconds).name();
  return {seconds * 1000, icu::UnicodeString::fromUTF8(name)};
}

icu::DateFormat::EStyle icuStyle(Style style) {
  switch (style) {
    case Style::kShort:
      return icu::DateFormat::kShort;
    case Style::kMedium:
      return icu::DateFormat::kMedium;
    case Style::kLong:
      return icu::DateFormat::kLong;
    case Style::kFull:
      return icu::DateFormat::kFull;
    case Style::kNone:
      break;
  }
  return icu::DateFormat::kNone;
}

std::unique_ptr<icu::SimpleDateFormat> build(const Configuration& configuration,
                                             const icu::Locale& locale) {
  // Every new formatter asks for the default zone; finding the device's own would cost more than
  // building the formatter, and its rules are not used.
  static std::once_flag once;
  std::call_once(once, [] { icu::TimeZone::setDefault(fixedZone(0)); });

  if (configuration.pattern) {
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(
        icu::UnicodeString::fromUTF8(*configuration.pattern), locale, status);
    if (U_FAILURE(status)) return nullptr;
    return formatter;
  }
  // The library would write both.
  if (configuration == Configuration{}) return nullptr;
  std::unique_ptr<icu::DateFormat> formatter(icu::DateFormat::createDateTimeInstance(
      icuStyle(configuration.dateStyle), icuStyle(configuration.timeStyle), locale));
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(formatter.get());
  if (simple) (void)formatter.release();
  return std::unique_ptr<icu::SimpleDateFormat>(simple);
}

/// Whether texts of that pattern tell their own offset from Greenwich.
bool hasZoneField(const icu::SimpleDateFormat& formatter) {
  icu::UnicodeString pattern;
  formatter.toPattern(pattern);
  bool quoted = false;
  for (int32_t i = 0; i < pattern.length(); ++i) {
    const char16_t c = pattern[i];
    if (c == u'\'') quoted = !quoted;
    if (!quoted && std::u16string_view(u"zZOvVXx").find(c) != std::u16string_view::npos) {
      return true;
    }
  }
  return false;
}

}  // namespace

struct DateFormatter::State {
  struct Built {
    Configuration configuration;
    std::unique_ptr<icu::SimpleDateFormat> formatter;
    std::optional<int> offset;

    /// Named zones are ours to resolve: the library's own rules are older than the system's.
    void setOffset(int seconds) {
      if (offset != seconds) formatter->setTimeZone(fixedZone(seconds));
      offset = seconds;
    }
  };

  Locale locale = Locale::currentLocale();
  std::optional<TimeZone> zone;
  Configuration configuration;
  std::vector<Built> built;

  TimeZone timeZone() const { return zone ? *zone : TimeZone::defaultTimeZone(); }

  /// The formatter for the configuration in force; null when it has none. Those built before are
  /// kept, since callers switch between two styles for each date.
  Built* current() {
    for (auto& one : built) {
      if (one.configuration == configuration) return &one;
    }
    auto formatter = build(configuration, icu::Locale(locale.localeIdentifier().c_str()));
    if (!formatter) return nullptr;
    return &built.emplace_back(Built{configuration, std::move(formatter), std::nullopt});
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
  state_->configuration.dateStyle = style;
  state_->configuration.pattern.reset();
}

void DateFormatter::setTimeStyle(Style style) {
  state_->configuration.timeStyle = style;
  state_->configuration.pattern.reset();
}

void DateFormatter::setDateFormat(std::string_view pattern) {
  state_->configuration.pattern = pattern;
  state_->built.clear();
}

std::string DateFormatter::dateFormat() const {
  std::string text;
  if (const auto* built = state_->current()) {
    icu::UnicodeString pattern;
    built->formatter->toPattern(pattern).toUTF8String(text);
  }
  return text;
}

std::string DateFormatter::stringFromDate(Date date) const {
  std::string text;
  auto* built = state_->current();
  if (!built || !std::isfinite(date.timeIntervalSinceReferenceDate())) return text;
  built->setOffset(state_->timeZone().secondsFromGMTForDate(date));
  icu::UnicodeString result;
  built->formatter->format(date.timeIntervalSince1970() * U_MILLIS_PER_SECOND, result);
  result.toUTF8String(text);
  return text;
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
  auto* built = state_->current();
  if (!built) return std::nullopt;
  built->setOffset(0);
  built->formatter->setLenient(false);
  const auto source = icu::UnicodeString::fromUTF8(text);
  icu::ParsePosition position;
  const UDate instant = built->formatter->parse(source, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != source.length() || source.isEmpty()) {
    return std::nullopt;
  }
  const auto date = Date::dateWithTimeIntervalSince1970(instant / U_MILLIS_PER_SECOND);
  if (hasZoneField(*built->formatter)) return date;
  return state_->timeZone().dateForWallSeconds(date.timeIntervalSinceReferenceDate());
}

}  // namespace vantrel
