#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using GeoCommandsTest = test::CommandLineTest;

/// Vincenty's series and single precision allow for this much.
constexpr double kMetres = 1;
constexpr double kDegrees = 1e-6;

/// Points all over the globe at sea level: our lines and GeodSolve's.
std::pair<std::string, std::string> manyPoints(int count) {
  std::mt19937 random(20260715);
  std::uniform_real_distribution<double> latitude(-90, 90);
  std::uniform_real_distribution<double> longitude(-180, 180);
  std::ostringstream ours;
  std::ostringstream theirs;
  ours.precision(12);
  theirs.precision(12);
  for (int i = 0; i < count; ++i) {
    const double lat1 = latitude(random), lon1 = longitude(random);
    const double lat2 = latitude(random), lon2 = longitude(random);
    ours << lat1 << ' ' << lon1 << " 0\t" << lat2 << ' ' << lon2 << " 0\n";
    theirs << lat1 << ' ' << lon1 << ' ' << lat2 << ' ' << lon2 << '\n';
  }
  return {ours.str(), theirs.str()};
}

double turn(double degrees) {
  return std::remainder(degrees, 360);
}

TEST_F(GeoCommandsTest, AgreesWithGeodSolveOverThousandsOfLines) {
  // More than the program reads at once.
  constexpr int kLines = 6000;
  const auto [ours, theirs] = manyPoints(kLines);
  const auto result = run({"geo", "curve", "--batch", "-"}, {}, ours);
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  const auto reference = test::runProgram({"GeodSolve", "-i", "-p", "6"}, {}, theirs);
  ASSERT_EQ(reference.exitCode, 0) << reference.errors;

  std::istringstream answers(result.output);
  std::istringstream expected(reference.output);
  int compared = 0;
  for (int i = 0; i < kLines; ++i) {
    double start = 0, back = 0, distance = 0, elevation = 0;
    double azimuth1 = 0, azimuth2 = 0, length = 0;
    expected >> azimuth1 >> azimuth2 >> length;
    answers >> start >> back >> distance >> elevation;
    ASSERT_TRUE(answers && expected) << i;
    // Where the series get worse, near the antipode, they are not what is tested here.
    if (length > 1.9e7) continue;
    ++compared;
    ASSERT_NEAR(turn(start - azimuth1), 0, kDegrees) << i;
    ASSERT_NEAR(turn(back - azimuth2 - 180), 0, kDegrees) << i;
    ASSERT_NEAR(distance, length, kMetres) << i;
  }
  EXPECT_GT(compared, kLines * 9 / 10);
  std::string rest;
  EXPECT_FALSE(answers >> rest);
}

}  // namespace
}  // namespace vantrel
