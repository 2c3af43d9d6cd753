#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/Locale.h"

namespace vantrel {

/// Formats and parses decimal numbers for a locale; by default with groups, at most three fraction
/// digits, and halves rounded to even. Rounding starts from the shortest decimal text that reads
/// back as the number: 1.005 becomes 1.01 with `kHalfUp`. The first use after a change is slow, as
/// it creates ICU's formatter. Not thread-safe.
class NumberFormatter {
 public:
  enum class RoundingMode {
    kHalfEven = 4,
    kHalfUp = 6,  ///< Halves away from zero.
  };

  /// Uses the current locale.
  NumberFormatter();
  ~NumberFormatter();
  NumberFormatter(NumberFormatter&&) noexcept;
  NumberFormatter& operator=(NumberFormatter&&) noexcept;

  void setLocale(const Locale& locale);
  void setRoundingMode(RoundingMode mode);
  /// Has no effect if it is smaller than the last fraction digit shown.
  void setRoundingIncrement(double increment);
  void setUsesGroupingSeparator(bool uses);
  void setMinimumIntegerDigits(int digits);
  /// A minimum above the maximum raises the maximum; a maximum below the minimum lowers the
  /// minimum.
  void setMinimumFractionDigits(int digits);
  void setMaximumFractionDigits(int digits);

  /// Zero keeps its sign, also after rounding: "-0.00" for -0.001.
  std::string stringFromNumber(double number) const;
  /// `nullopt` unless the complete text is a number.
  std::optional<double> numberFromString(std::string_view text) const;
  /// The locale's prefix of negative numbers.
  std::string minusSign() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
