#include <gmock/gmock.h>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::CommandLineTest;
using test::isOneLine;
using testing::HasSubstr;

TEST_F(CommandLineTest, AnswersHelpAndVersionAndRefusesWhatItDoesNotKnow) {
  struct Case {
    std::vector<std::string> arguments;
    int exitCode;
    const char *output, *errors;
  };
  const Case cases[] = {
      {{"--help"}, 0, "vantrel plan add --name", ""},
      {{"plan", "--help"}, 0, "remove", ""},
      {{"plan", "add", "-h"}, 0, "--latitude DEGREES", ""},
      {{"--version"}, 0, "vantrel 0.", ""},
      {{}, 64, "", "vantrel store sample"},
      {{"plan"}, 64, "", "remove"},
      {{"tody"}, 64, "", "vantrel: tody: no such command; did you mean today?\n"},
      {{"--json", "--color", "never", "plna", "list"},
       64,
       "",
       "vantrel: plna: no such command; did you mean plan?\n"},
      {{"plan", "lst"}, 64, "", "did you mean list?\n"},
      {{"xyzzy"}, 64, "", "no such command; see vantrel --help\n"},
      {{"today", "--expandd"}, 64, "", "did you mean --expanded?\n"},
      {{"today", "--name", "x"}, 64, "", "--name: no such option"},
      {{"plan", "show", "abcd", "efgh"}, 64, "", "efgh: one argument"},
      {{"plan", "show"}, 64, "", "PLAN is required; see vantrel plan show"},
      {{"plan", "add", "--name"}, 64, "", "--name"},
      {{"plan", "add", "--name", "a", "--name", "b"}, 64, "", "--name"},
      {{"plan", "edit", "abcd", "--date", "now", "--no-date"}, 64, "", "--no-date"},
      {{"today", "--color", "pink"}, 64, "", "--color"},
      {{"plan", "add", "--nam", "x"}, 64, "", "did you mean --name?\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const auto result = run(c.arguments);
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_THAT(result.output, HasSubstr(c.output));
    EXPECT_THAT(result.errors, HasSubstr(c.errors));
    EXPECT_EQ(result.output.empty(), c.exitCode != 0);
    EXPECT_EQ(result.errors.empty(), c.exitCode == 0);
    EXPECT_TRUE(c.exitCode == 0 || c.arguments.size() < 2 || isOneLine(result.errors));
  }
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(CommandLineTest, SaysWhatIsAllowedForAValue) {
  struct Case {
    const char* option;
    const char* value;
    const char* allowed;
  };
  const Case cases[] = {
      {"--latitude", "90.0001", "degrees from -90 to 90"},
      {"--latitude", "nan", "degrees from -90 to 90"},
      {"--latitude", "-inf", "degrees from -90 to 90"},
      {"--latitude", "41,39", "degrees from -90 to 90"},
      {"--latitude", "", "degrees from -90 to 90"},
      {"--longitude", "-180.5", "degrees from -180 to 180"},
      {"--longitude", "0x10", "degrees from -180 to 180"},
      {"--timezone", "Mars/Base", "names such as Europe/Madrid"},
      {"--timezone", "../../etc/localtime", "names such as Europe/Madrid"},
      {"--timezone", "", "names such as Europe/Madrid"},
      {"--date", "2026-02-29", "2026-07-15T21:40:00Z"},
      {"--date", "2026-07-15 24:00", "2026-07-15T21:40:00Z"},
      {"--date", "tomorow", "2026-07-15T21:40:00Z"},
      {"--date", "+99999999999d", "2026-07-15T21:40:00Z"},
      {"--date", "", "2026-07-15T21:40:00Z"},
      {"--name", "\xff", "UTF-8"},
      {"--name", "\x1b[2J\xc3\x28", "UTF-8"},
  };
  for (const auto& c : cases) expectRefused({"plan", "add", c.option, c.value}, 64, c.allowed);
  EXPECT_EQ(run({"plan", "add"}).exitCode, 64);
  EXPECT_EQ(run({"plan", "list", "--from", "soon"}).exitCode, 64);
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(CommandLineTest, ReadsNothingAndMakesNothingWithoutAStore) {
  const std::string link =
      "vantrel://plan?id=x-coredata:%2F%2FE8AFD1EB-9427-4A64-ABDA-AA06F7B1092C%2FPlanning%2Fp7";
  const std::vector<std::vector<std::string>> commands = {
      {"today"},
      {"today", "--json"},
      {"plan", "list"},
      {"plan", "show", "ABCD"},
      {"plan", "remove", "ABCD"},
      {"plan", "edit", "ABCD", "--no-name"},
      {"open", link},
      {"store", "info"},
  };
  for (const auto& command : commands) expectRefused(command, 66, "vantrel store sample");
  EXPECT_FALSE(fs::exists(container()));
  // Nor is a file without content a store, or made one by a look at it.
  fs::create_directories(container());
  test::writeFile(store(), "");
  EXPECT_EQ(run({"plan", "list"}).exitCode, 66);
  EXPECT_TRUE(fs::is_empty(store()));
}

TEST_F(CommandLineTest, TellsWhatIsWrongWithTheStore) {
  struct Case {
    const char* name;
    void (*spoil)(const fs::path& store);
    int exitCode;
  };
  const Case cases[] = {
      {"no database", [](const fs::path& p) { test::writeFile(p, std::string(5000, 'x')); }, 65},
      {"cut off", [](const fs::path& p) { fs::resize_file(p, 5000); }, 65},
      {"a folder", [](const fs::path& p) { fs::remove(p), fs::create_directory(p); }, 73},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove_all(container());
    add({"--name", "Sunrise", "--date", "2026-07-16 06:00"});
    for (const char* beside : {"-wal", "-shm"}) fs::remove(store().string() + beside);
    c.spoil(store());
    const std::string before = fs::is_directory(store()) ? "" : test::readFile(store());
    for (const std::vector<std::string>& command : {std::vector<std::string>{"today"},
                                                    {"plan", "list"},
                                                    {"plan", "add", "--name", "x"},
                                                    {"store", "info"}}) {
      expectRefused(command, c.exitCode, store());
    }
    EXPECT_EQ(fs::is_directory(store()) ? "" : test::readFile(store()), before);
  }
}

TEST_F(CommandLineTest, KeepsToPipesAndTerminals) {
  add({"--name", "Sunrise", "--date", "2026-07-16 06:00"});
  const std::string program = fs::read_symlink("/proc/self/exe").parent_path() / "vantrel";
  const std::string environment = "VANTREL_GROUP_CONTAINER='" + container().string() +
                                  "' VANTREL_NOW=2026-07-15T10:00:00Z LC_ALL=C.UTF-8 TERM=xterm ";
  const auto shell = [&](const std::string& script) {
    return test::runProgram({"sh", "-c", script});
  };
  const auto full = shell(environment + program + " today > /dev/full");
  EXPECT_EQ(full.exitCode, 74);
  EXPECT_TRUE(isOneLine(full.errors)) << full.errors;
  const auto closed = shell("trap '' PIPE; { sleep 0; " + environment + program +
                            " today --color=always; echo $? >&2; } | true");
  EXPECT_THAT(closed.errors, testing::AnyOf("0\n", "")) << closed.errors;

  const std::string bold = "\x1b[1mSunrise\x1b[0m";
  EXPECT_THAT(run({"today", "--color=always"}).output, HasSubstr(bold));
  EXPECT_THAT(run({"today"}).output, testing::StartsWith("Sunrise\n"));
  const std::string onTerminal = environment + program + " today";
  const auto script = [&](const std::string& command) {
    return shell("script -qec \"" + command + "\" /dev/null").output;
  };
  EXPECT_THAT(script(onTerminal), HasSubstr(bold));
  EXPECT_THAT(script("NO_COLOR=1 " + onTerminal), testing::Not(HasSubstr("\x1b")));
  EXPECT_THAT(script(onTerminal + " --color=never"), testing::Not(HasSubstr("\x1b")));
  EXPECT_THAT(script(environment + "TERM=dumb " + program + " today"),
              testing::Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace vantrel
