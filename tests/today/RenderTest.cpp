#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QImage>
#include <filesystem>

#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

TEST(Render, DrawsThePictureThatIsAskedFor) {
  const test::TemporaryDirectory home;
  {
    test::OpenStore store(home / "Vantrel.sqlite");
    store.insertPlan("Milky Way", 805844400);
    ASSERT_TRUE(store.context.save());
  }
  const std::map<std::string, std::string> environment = {
      {"VANTREL_GROUP_CONTAINER", home.path().string()},
      {"VANTREL_NOW", "2026-07-15T08:00:00Z"},
      {"LC_ALL", "en_US.UTF-8"}};
  const struct {
    std::vector<std::string> options;
    QSize size;
    QRgb corner;
  } cases[] = {
      // The usual card with 28 around it: header 36 and body 110.
      {{}, {454, 202}, qRgb(0xE6, 0xE7, 0xEA)},
      {{"--size", "500x300"}, {500, 300}, qRgb(0xE6, 0xE7, 0xEA)},
      {{"--size", "500x300", "--scale", "1.5", "--dark"}, {750, 450}, qRgb(0x0E, 0x0F, 0x11)},
      {{"--system-version", "9.3", "--size", "700x200"}, {700, 200}, qRgb(0x0E, 0x0F, 0x11)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.options));
    const auto file = (home / "card.png").string();
    std::vector<std::string> command = {"vantrel-today", "--render", file};
    command.insert(command.end(), c.options.begin(), c.options.end());
    const auto result = test::runProgram(command, environment);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
    const QImage image(QString::fromStdString(file));
    EXPECT_EQ(image.size(), c.size);
    // The shadow ends before the corner, but for its last traces.
    const QColor corner = image.pixelColor(0, 0);
    EXPECT_NEAR(corner.red(), qRed(c.corner), 3);
    EXPECT_NEAR(corner.blue(), qBlue(c.corner), 3);
  }
  const auto piped = test::runProgram({"vantrel-today", "--render", "-"}, environment);
  EXPECT_EQ(piped.output.substr(0, 4), "\x89PNG");

  // What is no plain file is written to, never replaced.
  const auto fifo = home / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  QFile reader(QString::fromStdString(fifo.string()));
  ASSERT_TRUE(reader.open(::open(fifo.c_str(), O_RDWR | O_NONBLOCK), QIODevice::ReadOnly,
                          QFile::AutoCloseHandle));
  EXPECT_EQ(test::runProgram({"vantrel-today", "--render", fifo.string()}, environment).exitCode,
            0);
  EXPECT_EQ(reader.read(4), "\x89PNG");
  EXPECT_TRUE(std::filesystem::is_fifo(fifo));
}

TEST(Render, SaysWhatIsWrongInOneLineAndLeavesNothingBehind) {
  const test::TemporaryDirectory home;
  const test::TemporaryDirectory full;
  { const test::OpenStore store(full / "Vantrel.sqlite"); }
  const test::TemporaryDirectory broken;
  test::writeFile(broken / "Vantrel.sqlite", std::string(5000, 'x'));
  const auto file = (home / "card.png").string();
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    std::string group;
    int exitCode;
  } cases[] = {
      {"no store", {"--render", file}, (home / "none").string(), 66},
      {"no database", {"--render", file}, broken.path().string(), 65},
      {"no folder", {"--render", (home / "no/card.png").string()}, full.path().string(), 73},
      {"bad size", {"--render", file, "--size", "40"}, full.path().string(), 64},
      {"bad scale", {"--render", file, "--scale", "0"}, full.path().string(), 64},
      {"size of no picture", {"--size", "400x300"}, full.path().string(), 64},
      {"dark and light", {"--render", file, "--dark", "--light"}, full.path().string(), 64},
      {"unknown option", {"--rendr", file}, full.path().string(), 64},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> command = {"vantrel-today"};
    command.insert(command.end(), c.arguments.begin(), c.arguments.end());
    const auto result = test::runProgram(command, {{"VANTREL_GROUP_CONTAINER", c.group}});
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_EQ(result.errors.find("vantrel-today: "), 0U) << result.errors;
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));
  }
}

}  // namespace
}  // namespace vantrel
