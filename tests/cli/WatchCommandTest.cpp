#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using nlohmann::json;

class BarCommands : public test::CommandLineTest {
 protected:
  /// A shell's run in the store's surroundings, with `vantrel` on the path.
  test::ProgramResult shell(const std::string& script) const {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return test::runProgram({"sh", "-c", "PATH=" + folder.string() + ":$PATH; " + script},
                            {{"VANTREL_GROUP_CONTAINER", container().string()},
                             {"VANTREL_NOW", "2026-07-15T10:00:00Z"},
                             {"TZ", "Europe/Madrid"},
                             {"LC_ALL", "de_DE.UTF-8"},
                             {"LANGUAGE", "en"}});
  }
};

TEST_F(BarCommands, TellABarTheNextPlanInItsMarkup) {
  struct Case {
    const char* date;
    const char* text;
    const char* state;
  };
  const Case cases[] = {
      {"2026-07-14 23:00", "", "none"},
      {"2026-07-15 06:00", "15.07.26 06:00  A &lt;b&gt; &amp; &quot;c&apos;", "started"},
      {"2026-07-16 12:00", "16.07.26 12:00  A &lt;b&gt; &amp; &quot;c&apos;", "later"},
      {"2026-07-15 23:59", "15.07.26 23:59  A &lt;b&gt; &amp; &quot;c&apos;", "today"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.date);
    add({"--name", "A <b> & \"c'", "--date", c.date});
    const auto bar = run({"today", "--waybar"}, {{"LC_ALL", "de_DE.UTF-8"}}).output;
    EXPECT_EQ(bar.find('\n'), bar.size() - 1);
    EXPECT_EQ(json::parse(bar)["text"], c.text);
    EXPECT_EQ(json::parse(bar)["class"], c.state);
    EXPECT_EQ(json::parse(bar)["alt"], c.state);
  }
  EXPECT_EQ(run({"today", "--waybar", "--json"}).exitCode, 64);
}

TEST_F(BarCommands, FollowTheStoreUntilNobodyReads) {
  // Each step waits for the line that the one before must have brought.
  const auto watched = shell(
      "{ vantrel watch --waybar; echo \"ended $?\" >&2; } | {"
      " read -r line; printf '%s\\n' \"$line\";"
      " vantrel plan add --name First --date '2026-07-16 12:00' >/dev/null;"
      " read -r line; printf '%s\\n' \"$line\";"
      " vantrel plan add --name Undated >/dev/null;"
      " vantrel plan add --name Sooner --date '2026-07-15 22:00' --timezone UTC >/dev/null;"
      " read -r line; printf '%s\\n' \"$line\";"
      " rm \"$VANTREL_GROUP_CONTAINER\"/Vantrel.sqlite*;"
      " read -r line; printf '%s\\n' \"$line\"; }");
  std::istringstream lines(watched.output);
  std::vector<std::pair<std::string, std::string>> told;
  for (std::string line; std::getline(lines, line);) {
    const auto bar = json::parse(line);
    told.emplace_back(bar["class"], bar["text"]);
  }
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"error", "Plans unavailable"},
      {"later", "16.07.26 12:00  First"},
      {"later", "15.07.26 22:00  Sooner"},
      {"error", "Plans unavailable"}};
  EXPECT_EQ(told, expected);
  EXPECT_THAT(watched.errors, testing::HasSubstr("vantrel store sample"));
  EXPECT_THAT(watched.errors, testing::EndsWith("ended 0\n"));
}

TEST_F(BarCommands, EndWithTheSignalsNumber) {
  add({"--name", "First", "--date", "2026-07-16 12:00"});
  for (const auto& [signal, code] : std::map<std::string, int>{{"INT", 130}, {"TERM", 143}}) {
    const auto ended =
        shell("cd \"$VANTREL_GROUP_CONTAINER\"; mkfifo " + signal + "; vantrel watch > " + signal +
              " & exec 3< " + signal + "; read -r line <&3; kill -" + signal +
              " $!; wait $!; code=$?;"
              " printf '%s\\n' \"$line\"; exit $code");
    EXPECT_EQ(ended.exitCode, code);
    EXPECT_EQ(ended.output, "16.07.26 12:00  First\n");
    EXPECT_EQ(ended.errors, "");
  }
}

}  // namespace
}  // namespace vantrel
