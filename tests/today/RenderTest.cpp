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
  static test::ProgramResult run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "vantrel-today");
    return test::runProgram(arguments);
  }

  const test::EnvironmentGuard group_{"VANTREL_GROUP_CONTAINER", directory_.path()};
  const std::string picture_ = directory_ / "card.png";
};

TEST_F(RenderTest, DrawsThePictureThatIsAskedFor) {
  savePlans({{"Milky Way", 805844400}});
  const test::EnvironmentGuard now("VANTREL_NOW", "2026-07-15T08:00:00Z");
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
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
    const QImage image(QString::fromStdString(picture_));
    EXPECT_EQ(image.size(), c.size);
    // The shadow ends before the corner, but for its last traces.
    EXPECT_NEAR(image.pixelColor(0, 0).red(), c.corner.red(), 3);
    EXPECT_NEAR(image.pixelColor(0, 0).blue(), c.corner.blue(), 3);
  }
  EXPECT_EQ(run({"--render", "-"}).output.substr(0, 4), "\x89PNG");

  // What is no plain file is written to, never replaced.
  const auto fifo = directory_ / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  QFile reader;
  ASSERT_TRUE(reader.open(::open(fifo.c_str(), O_RDWR | O_NONBLOCK), QIODevice::ReadOnly,
                          QFile::AutoCloseHandle));
  EXPECT_EQ(run({"--render", fifo}).exitCode, 0);
  EXPECT_EQ(reader.read(4), "\x89PNG");
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));
}

TEST_F(RenderTest, SaysWhatIsWrongInOneLineAndLeavesNothingBehind) {
  const struct {
    const char* name;
    std::vector<std::string> options;
    int exitCode;
    std::optional<std::string> store = std::nullopt;
  } cases[] = {
      {"no store", {"--render", picture_}, 66},
      {"an empty file", {"--render", picture_}, 66, ""},
      {"no database", {"--render", picture_}, 65, std::string(5000, 'x')},
      {"bad size", {"--render", picture_, "--size", "40"}, 64},
      {"bad scale", {"--render", picture_, "--scale", "0"}, 64},
      {"size of no picture", {"--size", "400x300"}, 64},
      {"dark and light", {"--render", picture_, "--dark", "--light"}, 64},
      {"unknown option", {"--rendr", picture_}, 64},
  };
  const auto expectRefused = [](const std::vector<std::string>& options, int exitCode) {
    const auto result = run(options);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::MatchesRegex("vantrel-today: [^\n]*\n"));
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.store) test::writeFile(file_, *c.store);
    expectRefused(c.options, c.exitCode);
    EXPECT_EQ(test::readFile(file_), c.store.value_or(""));
    std::filesystem::remove(file_);
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
  }
  savePlans({});
  expectRefused({"--render", directory_ / "no/card.png"}, 73);
}

}  // namespace
}  // namespace vantrel
