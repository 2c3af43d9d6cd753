#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/Locale.h"

namespace vantrel {

/// Writes and reads decimal numbers as a locale does: at most three fraction digits, grouped,
/// halves to even, until told otherwise. A number is rounded once, from the shortest decimal text
/// that reads back to it. Building the underlying formatter is costly and is put off to the first
/// use after a change. One thread at a time.
class NumberFormatter {
 public:
  enum class RoundingMode {
    kHalfEven = 4,
    kHalfUp = 6,  ///< Halves away from zero.
  };

  /// For the current locale.
  NumberFormatter();
  ~NumberFormatter();
  NumberFormatter(NumberFormatter&&) noexcept;
  NumberFormatter& operator=(NumberFormatter&&) noexcept;

  void setLocale(const Locale& locale);
  void setRoundingMode(RoundingMode mode);
  /// Has no effect while it is finer than what the fraction digits show.
  void setRoundingIncrement(double increment);
  void setUsesGroupingSeparator(bool uses);
  void setMinimumIntegerDigits(int digits);
  /// A minimum above the maximum raises it, a maximum below the minimum lowers it.
  void setMinimumFractionDigits(int digits);
  void setMaximumFractionDigits(int digits);

  /// Zero keeps its sign, also when it comes from rounding: "-0.00".
  std::string stringFromNumber(double number) const;
  /// The number that the whole text tells; nothing for any other text.
  std::optional<double> numberFromString(std::string_view text) const;
  /// What the locale puts before a negative number.
  std::string minusSign() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
