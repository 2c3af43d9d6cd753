// Compares the complete curve, including apparent elevation, with azimuths and distance by two
// libraries for the same million pairs: argument 0 around the globe, argument 1 within 200 km.
#include <benchmark/benchmark.h>
#include <geodesic.h>

#include <GeographicLib/Geodesic.hpp>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "geo/GeodeticCalculator.h"

namespace {

constexpr std::size_t kPairs = 1'000'000;
constexpr double kDegrees = 57.29577951308232;

struct Pair {
  vantrel::LocationCoordinate2D from;
  double fromAltitude;
  vantrel::LocationCoordinate2D to;
  double toAltitude;
};

std::vector<Pair> makePairs(bool isLocal) {
  std::mt19937_64 generator(20010101);
  const auto upTo = [&](double high) {
    return std::uniform_real_distribution<double>(0, high)(generator);
  };
  const auto place = [&] {
    return vantrel::LocationCoordinate2D{std::asin(1 - upTo(2)) * kDegrees, 180 - upTo(360)};
  };
  std::vector<Pair> pairs(kPairs);
  for (Pair& pair : pairs) {
    pair = {place(), upTo(4000), place(), upTo(4000)};
    if (isLocal) {
      GeographicLib::Geodesic::WGS84().Direct(pair.from.latitude, pair.from.longitude, upTo(360),
                                              upTo(200e3), pair.to.latitude, pair.to.longitude);
    }
  }
  return pairs;
}

/// Runs `inverse`, which returns the sum of its results, over all pairs.
template <typename Inverse>
void overAllPairs(benchmark::State& state, Inverse inverse) {
  static const std::vector<Pair> sets[] = {makePairs(false), makePairs(true)};
  double sum = 0;
  for ([[maybe_unused]] auto _ : state) {
    for (const Pair& pair : sets[state.range(0)]) sum += inverse(pair);
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPairs));
}

void vantrelCurve(benchmark::State& state) {
  const vantrel::GeodeticCalculator calculator;
  overAllPairs(state, [&](const Pair& p) {
    const vantrel::GeodeticCurve c =
        calculator.geodeticCurveBetweenSource(p.from, p.fromAltitude, p.to, p.toAltitude);
    return c.startAzimuth() + c.endAzimuth() + c.distance() + c.apparentElevation();
  });
}

void geographicLibInverse(benchmark::State& state) {
  const auto& geodesic = GeographicLib::Geodesic::WGS84();
  overAllPairs(state, [&](const Pair& p) {
    double distance = 0;
    double azimuth1 = 0;
    double azimuth2 = 0;
    geodesic.Inverse(p.from.latitude, p.from.longitude, p.to.latitude, p.to.longitude, distance,
                     azimuth1, azimuth2);
    return distance + azimuth1 + azimuth2;
  });
}

void projInverse(benchmark::State& state) {
  geod_geodesic geodesic;
  geod_init(&geodesic, 6378137, 1 / 298.257223563);
  overAllPairs(state, [&](const Pair& p) {
    double distance = 0;
    double azimuth1 = 0;
    double azimuth2 = 0;
    geod_inverse(&geodesic, p.from.latitude, p.from.longitude, p.to.latitude, p.to.longitude,
                 &distance, &azimuth1, &azimuth2);
    return distance + azimuth1 + azimuth2;
  });
}

BENCHMARK(vantrelCurve)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(geographicLibInverse)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(projInverse)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
