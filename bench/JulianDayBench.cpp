// Compares the Julian day conversions with those of ERFA, for the same days in random order.
#include <benchmark/benchmark.h>
#include <erfa.h>

#include <random>
#include <vector>

#include "time/PtDateTime.h"

namespace {

using vantrel::ephemeris::PtDateTime;

constexpr std::size_t kCount = 4096;

/// Instants between the years 1600 and 2400.
std::vector<double> julianDays() {
  std::mt19937_64 random(20240621);
  std::uniform_real_distribution<double> day(2305447.5, 2597641.5);
  std::vector<double> days(kCount);
  for (double& one : days) one = day(random);
  return days;
}

std::vector<PtDateTime> dateTimes() {
  std::vector<PtDateTime> result;
  for (const double day : julianDays()) result.emplace_back().FromJulianDay(day);
  return result;
}

void fromJulianDay(benchmark::State& state) {
  const auto days = julianDays();
  PtDateTime dateTime;
  for (auto _ : state) {
    for (const double day : days) {
      dateTime.FromJulianDay(day);
      benchmark::DoNotOptimize(dateTime);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(fromJulianDay);

void erfaJd2cal(benchmark::State& state) {
  const auto days = julianDays();
  int year = 0;
  int month = 0;
  int dayOfMonth = 0;
  double fraction = 0;
  for (auto _ : state) {
    for (const double day : days) {
      benchmark::DoNotOptimize(eraJd2cal(day, 0, &year, &month, &dayOfMonth, &fraction));
      benchmark::DoNotOptimize(fraction);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(erfaJd2cal);

void modifiedJulianDay(benchmark::State& state) {
  const auto times = dateTimes();
  for (auto _ : state) {
    for (const auto& time : times) benchmark::DoNotOptimize(time.ModifiedJulianDay());
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(modifiedJulianDay);

void erfaCal2jd(benchmark::State& state) {
  const auto times = dateTimes();
  double epoch = 0;
  double day = 0;
  for (auto _ : state) {
    for (const auto& time : times) {
      benchmark::DoNotOptimize(eraCal2jd(time.year, time.month, time.day, &epoch, &day));
      benchmark::DoNotOptimize(day);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(erfaCal2jd);

}  // namespace

BENCHMARK_MAIN();
