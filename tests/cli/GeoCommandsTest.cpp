#include <gmock/gmock.h>

#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::isOneLine;
using testing::HasSubstr;

class GeoCommandsTest : public test::CommandLineTest {
 protected:
  static std::vector<std::string> split(const std::string& words) {
    std::istringstream stream("geo " + words);
    return {std::istream_iterator<std::string>(stream), {}};
  }
  test::ProgramResult geo(const std::string& words, const std::string& input = "") const {
    return run(split(words), {}, input);
  }
};

/// Vincenty's series and single precision allow for this much.
constexpr double kMetres = 1;
constexpr double kDegrees = 1e-6;

TEST_F(GeoCommandsTest, SaysWhereThereIsNoDirection) {
  struct Case {
    const char* points;
    bool converged;
    double distance;
    const char *line, *warning;
  };
  // Distances from GeodSolve.
  const Case cases[] = {
      {"10 0 0 10 0 0", false, 0, "-- -- 0 0.00000000\n", "the same"},
      {"10 0 5 10 0 -2.5", false, 7.5, "-- -- 7.5 0.00000000\n", "the same"},
      {"10 180 0 10 -180 0", false, 0, nullptr, "the same"},
      {"0 0 0 0 180 0", false, 20003931, "-- -- 19903594 0.00000000\n", "antipodal"},
      {"1 0 0 -1 179.9 0", false, 20003008, nullptr, "antipodal"},
      // Along a meridian the answer is exact.
      {"10 20 0 11 20 0", true, 110611.187, nullptr, ""},
      {"11 20 0 10 20 0", true, 110611.187, nullptr, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.points);
    const auto result = geo(std::string("curve --json ") + c.points);
    ASSERT_EQ(result.exitCode, 0);
    const json answer = json::parse(result.output);
    EXPECT_EQ(answer["converged"], c.converged);
    EXPECT_EQ(answer["startAzimuth"].is_null(), !c.converged);
    EXPECT_EQ(answer["endAzimuth"].is_null(), !c.converged);
    // Nearly antipodal points come out up to a hundred kilometres too near.
    EXPECT_NEAR(answer["distance"], c.distance, c.distance > 1e7 ? 1.1e5 : kMetres);
    EXPECT_THAT(result.errors, HasSubstr(c.warning));
    EXPECT_EQ(result.errors.empty(), c.converged);
    const auto batch = geo("curve --batch", c.points);
    EXPECT_EQ(batch.exitCode, 0);
    if (c.line) {
      EXPECT_EQ(batch.output, c.line);
    }
    EXPECT_EQ(batch.output.starts_with("-- -- "), !c.converged);
    EXPECT_EQ(isOneLine(batch.errors), !c.converged) << batch.errors;
  }
}

TEST_F(GeoCommandsTest, ReadsSignsLettersAndEitherOrder) {
  const std::string expected = geo("curve -0.5 -2.5 -10 33.25 540 0").output;
  EXPECT_THAT(expected, HasSubstr("Distance"));
  EXPECT_EQ(geo("curve 60 -540 0 61 -179 0").output, geo("curve 60 180 0 61 181 0").output);
  for (const char* same :
       {"-.5 -2.5 -10 33.25 540 0", "0.5S 2.5W -10. 33.25N 540E -0", ".5s 2.5w -1e1 +33.25 540e 0",
        "--lonlat -2.5 -.5 -10 540 33.25 0", "-2.5 -.5 -10 540 33.25 0 --lonlat"}) {
    EXPECT_EQ(geo(std::string("curve ") + same).output, expected) << same;
  }
}

TEST_F(GeoCommandsTest, RefusesWithOneLineThatSaysWhatIsAllowed) {
  struct Case {
    const char* words;
    const char* message;
  };
  const Case cases[] = {
      {"curve 90.1 0 0 0 0 0", "LAT1 \"90.1\": allowed are degrees from -90 to 90"},
      {"curve 0 0 0 90.5S 0 0", "LAT2 \"90.5S\": allowed are degrees from -90 to 90"},
      {"curve 0 540.1 0 0 0 0", "LON1 \"540.1\": allowed are degrees from -540 to 540"},
      {"curve 0 0 0 0 12N 0", "LON2 \"12N\": allowed are"},
      {"curve --lonlat 0 91 0 0 0 0", "LAT1 \"91\": allowed are"},
      {"curve -41N 0 0 0 0 0", "LAT1 \"-41N\": allowed are"},
      {"curve 0 0 inf 0 0 0", "ALT1 \"inf\": allowed are finite numbers of metres"},
      {"curve 0 0 0 nan 0 0", "LAT2 \"nan\": allowed are"},
      {"curve 0 -inf 0 0 0 0", "-inf: allowed are finite numbers"},
      {"curve 0 0 0 0 0 -nan", "-nan: allowed are finite numbers"},
      {"curve 0 0 1,5 0 0 0", "ALT1 \"1,5\": allowed are"},
      {"curve 0 0 0 0 0", "LAT1 LON1 ALT1 LAT2 LON2 ALT2"},
      {"curve 0 0 0 0 0 0 0", "one argument too many"},
      {"curve 0 0 --batch -", "--batch"},
      {"radius -90.5", "allowed are degrees from -90 to 90"},
      {"radius -inf", "-inf: allowed are finite numbers"},
      {"elevation --pin2pin-distance 1 --earth-radius nan", "--earth-radius \"nan\": allowed are"},
      {"height --pin2pin-distance 1", "required"},
  };
  for (const auto& c : cases) expectRefused(split(c.words), 64, c.message);
}

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
  const auto result = geo("curve --batch -", ours);
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

TEST_F(GeoCommandsTest, AnswersALineWithALine) {
  const std::string lines =
      "# from, to\n\n   \t\r\n1 2 3 4 5 6\r\n1 2 3\n95N 0 0 \"1\x1b 1 1\n  # no\n" +
      std::string(600000, '7') + "\n1N 2E 3 4N 5E 6";
  const std::string good = geo("curve --batch", "1 2 3 4 5 6").output;
  const auto text = geo("curve --batch", lines);
  EXPECT_EQ(text.exitCode, 65);
  EXPECT_EQ(text.output, good + "\n\n\n" + good);
  EXPECT_THAT(text.errors, testing::MatchesRegex("vantrel: line 5: 3 values[^\n]*\n"
                                                 "vantrel: line 6: LAT1 \"95N\"[^\n]*\n"
                                                 "vantrel: line 8: 1 values[^\n]*\n"));

  const fs::path file = container().parent_path() / "points.txt";
  test::writeFile(file, lines);
  const auto objects = run({"geo", "curve", "--json", "--batch", file});
  EXPECT_EQ(objects.exitCode, 65);
  EXPECT_EQ(objects.errors, text.errors);
  std::istringstream stream(objects.output);
  std::vector<json> answers;
  for (std::string line; std::getline(stream, line);) answers.push_back(json::parse(line));
  ASSERT_EQ(answers.size(), 5U);
  EXPECT_EQ(answers[0], json::parse(geo("curve --json 1 2 3 4 5 6").output));
  std::istringstream line(good);
  for (const char* key : {"startAzimuth", "endAzimuth", "distance", "apparentElevation"}) {
    double value = 0;
    line >> value;
    EXPECT_NEAR(answers[0][key], value, 0.1) << key;
  }
  EXPECT_EQ(answers[1]["line"], 5);
  EXPECT_THAT(answers[2]["error"].get<std::string>(), HasSubstr("95N"));
  EXPECT_EQ(answers[4], answers[0]);

  EXPECT_EQ(geo("curve --batch /nowhere/points").exitCode, 66);
  EXPECT_EQ(geo("curve --batch /").exitCode, 74);
  const auto nothing = geo("curve --batch", "");
  EXPECT_EQ(nothing.exitCode, 0);
  EXPECT_EQ(nothing.output + nothing.errors, "");
}

TEST_F(GeoCommandsTest, TellsRadiusHeightAndElevation) {
  const std::string pins =
      " --pin2pin-distance 5000 --earth-radius 6371000 --red-pin-altitude -50.5";
  struct Case {
    std::string words;
    const char* text;
    const char* key;
    double value;
  };
  // From the same formulas in 50 digits (Python's mpmath); the axes are the ellipsoid's own.
  const Case cases[] = {
      {"radius 90S", "6356752.3142 m\n", "earthRadius", 6356752.3142},
      {"height --sun-moon-elevation 2.5 --black-pin-altitude 20" + pins,
       "Height above terrain  149.7726 m\nDistance to object    5004.8963 m\n", "distanceToObject",
       5004.89627754413159},
      {"elevation --apparent-height 300 --black-pin-altitude 20" + pins, "4.21529957°\n",
       "elevationAboveTerrain", 4.21529957459421434},
      {"elevation --pin2pin-distance 0 --earth-radius 6371000 --apparent-height 0 "
       "--red-pin-altitude 0 --black-pin-altitude 0",
       "--\n", "elevationAboveTerrain", NAN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.words);
    EXPECT_EQ(geo(c.words).output, c.text);
    const json answer = json::parse(geo(c.words + " --json").output);
    if (std::isnan(c.value)) {
      EXPECT_TRUE(answer[c.key].is_null());
    } else {
      EXPECT_NEAR(answer[c.key], c.value, 1e-7);
    }
  }
}

}  // namespace
}  // namespace vantrel
