#include "platform/text/RelativeDateFormatter.h"

#include <unicode/locid.h>
#include <unicode/measfmt.h>
#include <unicode/measunit.h>
#include <unicode/measure.h>
#include <unicode/reldatefmt.h>

namespace vantrel {

namespace {

URelativeDateTimeUnit icuUnit(RelativeDateFormatter::Unit unit) {
  using Unit = RelativeDateFormatter::Unit;
  switch (unit) {
    case Unit::kMinute:
      return UDAT_REL_UNIT_MINUTE;
    case Unit::kHour:
      return UDAT_REL_UNIT_HOUR;
    case Unit::kDay:
      return UDAT_REL_UNIT_DAY;
    case Unit::kWeek:
      return UDAT_REL_UNIT_WEEK;
    case Unit::kMonth:
      return UDAT_REL_UNIT_MONTH;
    case Unit::kYear:
      break;
  }
  return UDAT_REL_UNIT_YEAR;
}

icu::MeasureUnit measureUnit(RelativeDateFormatter::Unit unit) {
  using Unit = RelativeDateFormatter::Unit;
  switch (unit) {
    case Unit::kMinute:
      return icu::MeasureUnit::getMinute();
    case Unit::kHour:
      return icu::MeasureUnit::getHour();
    case Unit::kDay:
      return icu::MeasureUnit::getDay();
    case Unit::kWeek:
      return icu::MeasureUnit::getWeek();
    case Unit::kMonth:
      return icu::MeasureUnit::getMonth();
    case Unit::kYear:
      break;
  }
  return icu::MeasureUnit::getYear();
}

std::string utf8(const icu::UnicodeString& text, UErrorCode status) {
  std::string result;
  if (U_SUCCESS(status)) text.toUTF8String(result);
  return result;
}

}  // namespace

struct RelativeDateFormatter::State {
  explicit State(const Locale& l)
      : locale(l.localeIdentifier().c_str()), formatter(locale, status) {}

  icu::Locale locale;
  UErrorCode status = U_ZERO_ERROR;
  icu::RelativeDateTimeFormatter formatter;
};

RelativeDateFormatter::RelativeDateFormatter(const Locale& locale)
    : state_(std::make_unique<State>(locale)) {}
RelativeDateFormatter::~RelativeDateFormatter() = default;
RelativeDateFormatter::RelativeDateFormatter(RelativeDateFormatter&&) noexcept = default;

std::string RelativeDateFormatter::day(int days) const {
  UErrorCode status = state_->status;
  icu::UnicodeString text;
  if (days < -1 || days > 1) return relative(days, Unit::kDay);
  return utf8(state_->formatter.format(days, UDAT_REL_UNIT_DAY, text, status), status);
}

std::string RelativeDateFormatter::relative(int count, Unit unit) const {
  UErrorCode status = state_->status;
  icu::UnicodeString text;
  return utf8(state_->formatter.formatNumeric(count, icuUnit(unit), text, status), status);
}

std::string RelativeDateFormatter::span(int count, Unit unit) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::MeasureFormat formatter(state_->locale, UMEASFMT_WIDTH_WIDE, status);
  const icu::Measure measure(icu::Formattable(count), new icu::MeasureUnit(measureUnit(unit)),
                             status);
  icu::UnicodeString text;
  icu::FieldPosition position;
  return utf8(formatter.formatMeasures(&measure, 1, text, position, status), status);
}

}  // namespace vantrel
