#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/CommandLineFixture.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using CameraCommands = test::CommandLineTest;

TEST_F(CameraCommands, KeepACameraFromAddToRemove) {
  EXPECT_EQ(run({"camera", "add", "Field\x1b 6", "--sensor", "6X7", "--film", "--aperture", "2.8",
                 "--focal-length", "105", "--coc", "0"})
                .output,
            "");
  const auto added = json::parse(run({"camera", "add", "Alpha 7", "--width", "23.6", "--height",
                                      "15.7", "--megapixels", "24.2", "--json"})
                                     .output);
  // Single precision by Python's struct module, the fewest digits that read back.
  const json expected = {{"uniqueIdentifier", added["uniqueIdentifier"]},
                         {"uri", added["uri"]},
                         {"model", "Alpha 7"},
                         {"sensorWidth", 23.6},
                         {"sensorHeight", 15.7},
                         {"megapixels", 24.2},
                         {"coc", nullptr},
                         {"aperture", nullptr},
                         {"focalLength", nullptr},
                         {"isFilm", nullptr},
                         {"sensorDiagonal", 28.345194},
                         {"circleOfConfusion", 0.019684162},
                         {"cropFactor", 1.5264181}};
  EXPECT_EQ(added, expected);
  const auto list = json::parse(run({"camera", "list", "--json"}).output)["cameras"];
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0], expected);
  EXPECT_EQ(list[1]["isFilm"], true);
  EXPECT_EQ(list[1]["circleOfConfusion"], 0);
  const std::string id = list[0]["uniqueIdentifier"];
  const std::string other = list[1]["uniqueIdentifier"];
  EXPECT_EQ(
      run({"camera", "list"}).output,
      "Alpha 7   23.6 × 15.7 mm  diagonal 28.345194 mm  CoC 0.019684162 mm  crop 1.5264181  " +
          id.substr(0, 8) +
          "\nField\ufffd 6  69.5 × 56 mm    diagonal 89.25385 mm   CoC 0 mm            crop "
          "0.4847591  " +
          other.substr(0, 8) + "\n");
  for (const std::string& name : {std::string("Alpha 7"), std::string("alpha-7"), id,
                                  id.substr(0, 6), added["uri"].get<std::string>()}) {
    EXPECT_EQ(json::parse(run({"camera", "show", name, "--json"}).output), expected) << name;
  }
  EXPECT_THAT(run({"camera", "show", other}).output, HasSubstr("  Focal      105 mm\n"));
  EXPECT_EQ(run({"camera", "remove", "alpha 7"}).exitCode, 0);
  EXPECT_EQ(run({"camera", "show", "Alpha 7"}).exitCode, 66);
  EXPECT_EQ(test::sqlite(store(), "SELECT count(*), ZISFILM FROM ZCUSTOMCAMERA"), "1|1");
}

TEST_F(CameraCommands, RefuseWhatMakesNoCamera) {
  run({"camera", "add", "Alpha 7", "--sensor", "full-frame"});
  // Two of one model, as another program may have made them.
  test::sqlite(store(),
               "INSERT INTO ZCUSTOMCAMERA (Z_ENT, Z_OPT, ZMODEL) VALUES (1, 1, 'Twin'), "
               "(1, 1, 'Twin')");
  struct Case {
    std::vector<std::string> arguments;
    int exitCode;
    const char* expected;
  };
  const Case cases[] = {
      {{"add", "Alpha 7", "--sensor", "APS-C"}, 64, "another camera has this model"},
      {{"add", "B"}, 64, "give --sensor, or"},
      {{"add", "B", "--width", "36"}, 64, "give --sensor, or"},
      {{"add", "B", "--width", "-36", "--height", "24"}, 64, "above 0"},
      {{"add", "B", "--width", "nan", "--height", "24"}, 64, "--width"},
      {{"add", "B", "--width", "1e30", "--height", "24"}, 64, "up to 100000"},
      {{"add", "B", "--sensor", "aps-c", "--height", "24"}, 64, "excludes"},
      {{"add", "B", "--sensor", "roll film"}, 64, "there are Roll film 6 × 4.5, Roll film 6 × 6,"},
      {{"add", "B", "--sensor", "fullfrom"}, 64, "did you mean \"Full frame\"?"},
      {{"add", "B", "--sensor", "aps-c 1.5x"}, 64, "did you mean \"APS-C\"?"},
      {{"add", "B", "--sensor", "\x1b[2J"}, 64, "see vantrel camera sensors"},
      {{"add", " ", "--sensor", "aps-c"}, 64, "must not be empty"},
      {{"add", "\xff", "--sensor", "aps-c"}, 64, "UTF-8"},
      {{"show", "Alpha 8"}, 66, "did you mean \"Alpha 7\"?"},
      {{"remove", "-"}, 66, "no such camera"},
      {{"remove", "Twin"}, 64, "more than one camera"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"camera"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, c.exitCode) << c.expected;
    EXPECT_THAT(result.errors, HasSubstr(c.expected));
    EXPECT_EQ(result.errors.find('\x1b'), std::string::npos);
  }
  EXPECT_EQ(test::sqlite(store(), "SELECT count(*) FROM ZCUSTOMCAMERA"), "3");
}

}  // namespace
}  // namespace vantrel
