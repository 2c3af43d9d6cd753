#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QImage>
#include <filesystem>

#include "support/TestStore.h"

namespace vantrel {
namespace {

class RenderTest : public test::StoreTest {
 protected:
  static test::ProgramResult run(std::vector<std::string> arguments,
                                 const std::map<std::string, std::string>& environment) {
    arguments.insert(arguments.begin(), "vantrel-today");
    return test::runProgram(arguments, environment);
  }

  const std::string group_ = directory_.path();
  const std::string picture_ = directory_ / "card.png";
};

TEST_F(RenderTest, DrawsThePictureThatIsAskedFor) {
  savePlans({{"Milky Way", 805844400}});
  const std::map<std::string, std::string> environment = {{"VANTREL_GROUP_CONTAINER", group_},
                                                          {"VANTREL_NOW", "2026-07-15T08:00:00Z"},
                                                          {"LC_ALL", "en_US.UTF-8"}};
  const QColor light(0xE6, 0xE7, 0xEA);
  const QColor dark(0x0E, 0x0F, 0x11);
  const struct {
    std::vector<std::string> options;
    QSize size;
    QColor corner;
  } cases[] = {
      // The usual card with 28 around it: header 36 and body 110.
      {{}, {454, 202}, light},
      {{"--size", "500x300"}, {500, 300}, light},
      {{"--size", "500x300", "--scale", "1.5", "--dark"}, {750, 450}, dark},
      {{"--system-version", "9.3", "--size", "700x200"}, {700, 200}, dark},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.options));
    std::vector<std::string> arguments = {"--render", picture_};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const auto result = run(arguments, environment);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
    const QImage image(QString::fromStdString(picture_));
    EXPECT_EQ(image.size(), c.size);
    // The shadow ends before the corner, but for its last traces.
    EXPECT_NEAR(image.pixelColor(0, 0).red(), c.corner.red(), 3);
    EXPECT_NEAR(image.pixelColor(0, 0).blue(), c.corner.blue(), 3);
  }
  EXPECT_EQ(run({"--render", "-"}, environment).output.substr(0, 4), "\x89PNG");

  // What is no plain file is written to, never replaced.
  const auto fifo = directory_ / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  QFile reader;
  ASSERT_TRUE(reader.open(::open(fifo.c_str(), O_RDWR | O_NONBLOCK), QIODevice::ReadOnly,
                          QFile::AutoCloseHandle));
  EXPECT_EQ(run({"--render", fifo}, environment).exitCode, 0);
  EXPECT_EQ(reader.read(4), "\x89PNG");
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));
}

TEST_F(RenderTest, SaysWhatIsWrongInOneLineAndLeavesNothingBehind) {
  const test::TemporaryDirectory pictures;
  const test::TemporaryDirectory empty;
  test::writeFile(empty / "Vantrel.sqlite", "");
  const test::TemporaryDirectory broken;
  test::writeFile(broken / "Vantrel.sqlite", std::string(5000, 'x'));
  savePlans({});
  const std::string file = pictures / "card.png";
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    std::string group;
    int exitCode;
  } cases[] = {
      {"no store", {"--render", file}, pictures / "none", 66},
      {"an empty file", {"--render", file}, empty.path(), 66},
      {"no database", {"--render", file}, broken.path(), 65},
      {"no folder", {"--render", pictures / "no/card.png"}, group_, 73},
      {"bad size", {"--render", file, "--size", "40"}, group_, 64},
      {"bad scale", {"--render", file, "--scale", "0"}, group_, 64},
      {"size of no picture", {"--size", "400x300"}, group_, 64},
      {"dark and light", {"--render", file, "--dark", "--light"}, group_, 64},
      {"unknown option", {"--rendr", file}, group_, 64},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto result = run(c.arguments, {{"VANTREL_GROUP_CONTAINER", c.group}});
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::MatchesRegex("vantrel-today: [^\n]*\n"));
    EXPECT_TRUE(std::filesystem::is_empty(pictures.path()));
    EXPECT_TRUE(std::filesystem::is_empty(empty / "Vantrel.sqlite"));
  }
}

}  // namespace
}  // namespace vantrel
