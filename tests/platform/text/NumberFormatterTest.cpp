#include "platform/text/NumberFormatter.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(NumberFormatter, RoundsOnceAndWritesAsTheLocaleDoes) {
  using Mode = NumberFormatter::RoundingMode;
  struct Case {
    const char* locale;
    Mode mode;
    int minimum, maximum;
    double number;
    const char* text;
  };
  // Rounding: Python, Decimal(repr(number)).quantize with ROUND_HALF_UP or ROUND_HALF_EVEN.
  // Signs, digits and separators: CLDR 42.
  const Case cases[] = {
      {"en_US", Mode::kHalfUp, 0, 0, -12.5, "-13"},
      {"en_US", Mode::kHalfUp, 0, 0, 123.4996, "123"},
      {"en_US", Mode::kHalfUp, 2, 2, 0.125, "0.13"},
      {"en_US", Mode::kHalfUp, 2, 2, -0.001, "-0.00"},
      {"en_US", Mode::kHalfUp, 1, 2, 3, "3.0"},
      {"en_US", Mode::kHalfUp, 0, 2, 1.005, "1.01"},
      {"en_US", Mode::kHalfUp, 0, 3, 0.0005, "0.001"},
      {"en_US_POSIX", Mode::kHalfEven, 0, 20, 2.5e-20, "0.00000000000000000002"},
      {"de_DE", Mode::kHalfEven, 0, 3, -1234.5, "-1.234,5"},
      {"sv_SE", Mode::kHalfEven, 0, 3, -1234.5, "−1\u00a0234,5"},
      {"ar_EG", Mode::kHalfEven, 0, 3, -1234.5, "\u061c-١٬٢٣٤٫٥"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    NumberFormatter formatter;
    formatter.setLocale(Locale(c.locale));
    formatter.setRoundingMode(c.mode);
    if (c.mode == Mode::kHalfUp) formatter.setRoundingIncrement(0.001);
    formatter.setMaximumFractionDigits(c.maximum);
    formatter.setMinimumFractionDigits(c.minimum);
    EXPECT_EQ(formatter.stringFromNumber(c.number), c.text);
  }
}

TEST(NumberFormatter, ReadsOnlyWholeTexts) {
  NumberFormatter formatter;
  formatter.setLocale(Locale("en_US_POSIX"));
  formatter.setUsesGroupingSeparator(false);
  EXPECT_EQ(formatter.numberFromString("-1234.5"), -1234.5);
  for (const char* text : {"", "x", "1.5x", "1,234"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(formatter.numberFromString(text));
  }
}

}  // namespace
}  // namespace vantrel
