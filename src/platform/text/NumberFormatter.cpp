#include "platform/text/NumberFormatter.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/parsepos.h>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

struct NumberSettings {
  NumberFormatter::RoundingMode roundingMode = NumberFormatter::RoundingMode::kHalfEven;
  double roundingIncrement = 0;
  bool usesGroupingSeparator = true;
  int minimumIntegerDigits = 1;
  int minimumFractionDigits = 0;
  int maximumFractionDigits = 3;
  friend bool operator==(const NumberSettings&, const NumberSettings&) = default;
};

std::unique_ptr<icu::DecimalFormat> build(const NumberSettings& settings,
                                          const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> made(
      icu::NumberFormat::createInstance(locale, UNUM_DECIMAL, status));
  auto* decimal = dynamic_cast<icu::DecimalFormat*>(made.get());
  if (U_FAILURE(status) || !decimal) return nullptr;
  std::unique_ptr<icu::DecimalFormat> formatter(decimal);
  (void)made.release();
  formatter->setRoundingMode(settings.roundingMode == NumberFormatter::RoundingMode::kHalfUp
                                 ? icu::NumberFormat::kRoundHalfUp
                                 : icu::NumberFormat::kRoundHalfEven);
  formatter->setGroupingUsed(settings.usesGroupingSeparator);
  formatter->setMinimumIntegerDigits(settings.minimumIntegerDigits);
  formatter->setMinimumFractionDigits(settings.minimumFractionDigits);
  formatter->setMaximumFractionDigits(settings.maximumFractionDigits);
  if (settings.roundingIncrement > 0) {
    formatter->setRoundingIncrement(settings.roundingIncrement);
  }
  return formatter;
}

}  // namespace

struct NumberFormatter::State {
  explicit State(const Locale& l) : locale(l.localeIdentifier().c_str()) {}

  /// Null if ICU fails.
  const icu::DecimalFormat* formatter() {
    if (!built || builtFrom != settings) {
      built = build(settings, locale);
      builtFrom = settings;
    }
    return built.get();
  }

  icu::Locale locale;
  NumberSettings settings;
  NumberSettings builtFrom;
  std::unique_ptr<icu::DecimalFormat> built;
};

NumberFormatter::NumberFormatter() : state_(std::make_unique<State>(Locale::currentLocale())) {}
NumberFormatter::~NumberFormatter() = default;
NumberFormatter::NumberFormatter(NumberFormatter&&) noexcept = default;
NumberFormatter& NumberFormatter::operator=(NumberFormatter&&) noexcept = default;

void NumberFormatter::setLocale(const Locale& locale) {
  state_->locale = icu::Locale(locale.localeIdentifier().c_str());
  state_->built.reset();
}

void NumberFormatter::setRoundingMode(RoundingMode mode) {
  state_->settings.roundingMode = mode;
}

void NumberFormatter::setRoundingIncrement(double increment) {
  state_->settings.roundingIncrement = increment;
}

void NumberFormatter::setUsesGroupingSeparator(bool uses) {
  state_->settings.usesGroupingSeparator = uses;
}

void NumberFormatter::setMinimumIntegerDigits(int digits) {
  state_->settings.minimumIntegerDigits = std::max(digits, 0);
}

void NumberFormatter::setMinimumFractionDigits(int digits) {
  auto& settings = state_->settings;
  settings.minimumFractionDigits = std::max(digits, 0);
  settings.maximumFractionDigits =
      std::max(settings.maximumFractionDigits, settings.minimumFractionDigits);
}

void NumberFormatter::setMaximumFractionDigits(int digits) {
  auto& settings = state_->settings;
  settings.maximumFractionDigits = std::max(digits, 0);
  settings.minimumFractionDigits =
      std::min(settings.maximumFractionDigits, settings.minimumFractionDigits);
}

std::string NumberFormatter::stringFromNumber(double number) const {
  std::string text;
  const auto* formatter = state_->formatter();
  if (!formatter) return text;
  icu::UnicodeString result;
  return formatter->format(number, result).toUTF8String(text);
}

std::optional<double> NumberFormatter::numberFromString(std::string_view text) const {
  const auto* formatter = state_->formatter();
  if (!formatter) return std::nullopt;
  const auto whole = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  icu::ParsePosition position(0);
  icu::Formattable number;
  formatter->parse(whole, number, position);
  if (position.getIndex() == 0 || position.getIndex() != whole.length()) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const double value = number.getDouble(status);
  if (U_FAILURE(status)) return std::nullopt;
  return value;
}

std::string NumberFormatter::minusSign() const {
  std::string text;
  const auto* formatter = state_->formatter();
  if (!formatter) return text;
  return formatter->getDecimalFormatSymbols()
      ->getConstSymbol(icu::DecimalFormatSymbols::kMinusSignSymbol)
      .toUTF8String(text);
}

}  // namespace vantrel
