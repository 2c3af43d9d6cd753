#include "platform/NumberFormatter.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(NumberFormatter, RoundsHalvesAwayFromZeroOnce) {
  NumberFormatter formatter;
  formatter.setLocale(Locale("en_US"));
  formatter.setRoundingMode(NumberFormatter::RoundingMode::kHalfUp);
  formatter.setUsesGroupingSeparator(false);
  formatter.setRoundingIncrement(0.001);
  struct Case {
    double number;
    int minimum;
    int maximum;
    const char* text;
  };
  // Python: Decimal(repr(number)).quantize(…, ROUND_HALF_UP).
  const Case cases[] = {
      {12.5, 0, 0, "13"},         {-12.5, 0, 0, "-13"},    {123.4996, 0, 0, "123"},
      {0.125, 2, 2, "0.13"},      {-0.001, 2, 2, "-0.00"}, {-0.3, 0, 0, "-0"},
      {3, 1, 2, "3.0"},           {3.456, 1, 2, "3.46"},   {1.005, 0, 2, "1.01"},
      {1234567, 0, 0, "1234567"}, {0.0005, 0, 3, "0.001"}, {2.0004, 0, 3, "2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    formatter.setMaximumFractionDigits(c.maximum);
    formatter.setMinimumFractionDigits(c.minimum);
    EXPECT_EQ(formatter.stringFromNumber(c.number), c.text);
  }
}

TEST(NumberFormatter, TwentyDigitsAreTheShortestTextThatReadsBack) {
  NumberFormatter formatter;
  formatter.setLocale(Locale("en_US_POSIX"));
  formatter.setUsesGroupingSeparator(false);
  formatter.setMaximumFractionDigits(20);
  struct Case {
    double number;
    const char* text;
  };
  // Python: format(Decimal(repr(number)), "f"), quantized half-even at 20 digits where longer.
  const Case cases[] = {
      {0.1, "0.1"},
      {1234.5, "1234.5"},
      {-0.0, "-0"},
      {1e21, "1000000000000000000000"},
      {1.5e-20, "0.00000000000000000002"},
      {2.5e-20, "0.00000000000000000002"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(formatter.stringFromNumber(c.number), c.text);
  }
  EXPECT_EQ(formatter.numberFromString("-1234.5"), -1234.5);
  for (const char* text : {"", "x", "1.5x", "1,234"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(formatter.numberFromString(text));
  }
}

TEST(NumberFormatter, WritesAsTheLocaleDoes) {
  struct Case {
    const char* locale;
    const char* text;
    const char* minus;
  };
  // CLDR 42: decimal, grouping and minus of each locale.
  const Case cases[] = {
      {"de_DE", "-1.234,5", "-"},
      {"sv_SE", "−1\u00a0234,5", "−"},
      {"ar_EG", "\u061c-١٬٢٣٤٫٥", "\u061c-"},
      {"en_US_POSIX", "-1234.5", "-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    NumberFormatter formatter;
    formatter.setLocale(Locale(c.locale));
    EXPECT_EQ(formatter.stringFromNumber(-1234.5), c.text);
    EXPECT_EQ(formatter.minusSign(), c.minus);
  }
}

}  // namespace
}  // namespace vantrel
