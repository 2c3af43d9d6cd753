#include "time/PtDateTime.h"

#include <array>
#include <cmath>

// Source: Meeus, Astronomical Algorithms, chapter 7. Common days are computed with integers, which
// gives identical results faster; all others with the original formulas, out of line to keep the
// common path small.

namespace vantrel::ephemeris {

namespace {

struct CivilDay {
  std::int32_t year;
  std::int32_t month;
  std::int32_t day;
};

/// Converts a Julian Day + 0.5.
[[gnu::cold, gnu::noinline]] CivilDay civilDay(double t) {
  const double z = std::trunc(t);
  double a = z;
  if (z >= 2299161) {
    const double alpha = std::trunc((z - 1867216.25) / 36524.25);
    a = z + 1 + alpha - std::floor(alpha * 0.25);
  }
  const double b = a + 1524;
  const double c = std::trunc((b - 122.1) / 365.25);
  const double r = b - std::trunc(c * 365.25);
  const double e = std::trunc(r / 30.6001);
  const double month = e < 14 ? e - 1 : e - 13;
  const double year = month == 1 || month == 2 ? c - 4715 : c - 4716;
  const double day = (t - z) + r - std::floor(e * 30.6001);
  return {static_cast<std::int32_t>(year), static_cast<std::int32_t>(month),
          static_cast<std::int32_t>(day)};
}

/// The range of `civilDayOfWholeDay`. From 512 on, the fraction of t has at most 43 bits: adding it
/// to r (below 512) is exact, and truncating the sum gives r.
constexpr double kFirstWholeDay = 512;
constexpr double kLastWholeDay = 1e8;

/// Like civilDay(), with fractions expanded to integers: (z - 1867216.25) / 36524.25 is
/// (4z - 7468865) / 146097, etc. Each quotient is an integer, which doubles represent exactly, or
/// at least 1/306001 away from one, which is far more than the rounding error of doubles.
CivilDay civilDayOfWholeDay(std::uint32_t z) {
  std::uint32_t b = z + 1524;
  if (z >= 2299161) {
    const std::uint32_t alpha = (4 * z - 7468865) / 146097;
    b += 1 + alpha - alpha / 4;
  }
  const std::uint32_t c = (20 * b - 2442) / 7305;
  const std::uint32_t r = b - 1461 * c / 4;
  const std::uint32_t e = 10000 * r / 306001;
  const std::uint32_t month = e < 14 ? e - 1 : e - 13;
  const std::uint32_t year = c - (month <= 2 ? 4715 : 4716);
  const std::uint32_t day = r - 306001 * e / 10000;
  return {static_cast<std::int32_t>(year), static_cast<std::int32_t>(month),
          static_cast<std::int32_t>(day)};
}

/// Days from the epoch to 00:00 of the date.
[[gnu::cold, gnu::noinline]] std::int64_t midnightOf(const PtDateTime& date) {
  std::int64_t y = date.year;
  std::int64_t m = date.month;
  if (m < 3) {
    m += 12;
    y -= 1;
  }
  const bool gregorian = y * 10000 + m * 100 + date.day > 15821004;
  const std::int64_t b = gregorian ? y / 400 - y / 100 + y / 4 : (y + 4716) / 4 - 1181;
  const auto months = static_cast<std::int64_t>(30.6001 * static_cast<double>(m + 1));
  return 365 * y - 679004 + b + months + date.day;
}

/// trunc(30.6001 (m + 1)) - 679004 by month, where January and February are months 13 and 14.
constexpr std::array<std::int32_t, 13> kMonths = {0,       -678576, -678545, -678882, -678851,
                                                  -678821, -678790, -678760, -678729, -678698,
                                                  -678668, -678637, -678607};

}  // namespace

double PtDateTime::ModifiedJulianDay() const {
  const auto m = static_cast<std::uint32_t>(month);
  const auto d = static_cast<std::uint32_t>(day);
  const std::uint32_t y = static_cast<std::uint32_t>(year) - (m < 3 ? 1 : 0);
  std::int64_t midnight = 0;
  // Except in 1582 (from March on) the year determines the calendar, and for years from 0 on no
  // division is negative: (y + 4716) / 4 - 1181 is y / 4 - 2.
  if (y < 100000 && y != 1582 && m - 1 < 12 && d < 100) [[likely]] {
    const std::uint32_t century = y / 100;
    const std::uint32_t leap = y > 1582 ? century / 4 - century : static_cast<std::uint32_t>(-2);
    midnight = static_cast<std::int32_t>(1461 * y / 4 + leap + d) + kMonths[m];
  } else {
    midnight = midnightOf(*this);
  }
  return static_cast<double>(midnight) + hour / 24.0 + minutes / 1440.0;
}

void PtDateTime::FromModifiedJulianDay(double modifiedJulianDay) {
  FromJulianDay(modifiedJulianDay + 2400000.5);
}

void PtDateTime::FromJulianDay(double julianDay) {
  const double t = julianDay + 0.5;
  CivilDay civil{};
  double midnight = 0;
  if (t >= kFirstWholeDay && t < kLastWholeDay) [[likely]] {
    const auto z = static_cast<std::int32_t>(t);
    civil = civilDayOfWholeDay(static_cast<std::uint32_t>(z));
    midnight = z;
  } else if (t > -2147483649.0 && t < 2147483648.0) {
    civil = civilDay(t);
    midnight = std::floor(t);
  } else {
    *this = PtDateTime();
    return;
  }
  year = civil.year;
  month = civil.month;
  day = civil.day;

  const double s = (t - midnight) * 86400.0;
  // Equals floor(s / 3600) and fmod(s / 60, 60) in doubles: dividing the largest double below 3600
  // h gives 0.53 units in the last place below h (and 60 h), which is more than half a unit, so
  // neither quotient rounds up to a whole hour. The difference below is exact, like every
  // remainder.
  hour = static_cast<std::int32_t>(static_cast<std::uint32_t>(s) / 3600);
  const double remainder = s / 60.0 - 60.0 * hour;
  // Below 2^23 the sum of a float and 0.5 is exact in a double: halves round away from zero.
  const double halfUp = static_cast<double>(static_cast<float>(remainder * 100000.0)) + 0.5;
  const auto rounded = static_cast<float>(static_cast<std::int32_t>(halfUp));
  minutes = static_cast<double>(rounded / 100000.0F);
}

}  // namespace vantrel::ephemeris
