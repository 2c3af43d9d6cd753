#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/Guards.h"

namespace vantrel::test {

/// One line on standard error, as messages have it.
inline bool isOneLine(const std::string& text) {
  return text.starts_with("vantrel: ") && text.find('\n') == text.size() - 1;
}

/// Runs `vantrel` on a store of its own, in Madrid on a summer noon, in American English.
class CommandLineTest : public testing::Test {
 protected:
  ProgramResult run(const std::vector<std::string>& arguments,
                    const std::map<std::string, std::string>& more = {},
                    const std::string& input = {}) const {
    std::map<std::string, std::string> environment = {
        {"VANTREL_GROUP_CONTAINER", container_.string()},
        {"XDG_CONFIG_HOME", directory_ / "config"},
        {"VANTREL_NOW", "2026-07-15T10:00:00Z"},
        {"TZ", "Europe/Madrid"},
        {"LC_ALL", "en_US.UTF-8"},
        {"LANGUAGE", "en"},
        {"NO_COLOR", ""},
        {"TERM", "xterm"},
    };
    for (const auto& [name, value] : more) environment[name] = value;
    std::vector<std::string> command = {"vantrel"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command, environment, input);
  }

  /// Runs a command that is refused: nothing on standard output, and one line that holds `part`.
  void expectRefused(const std::vector<std::string>& arguments, int exitCode = 64,
                     const std::string& part = {}) const {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(isOneLine(result.errors)) << result.errors;
    EXPECT_NE(result.errors.find(part), std::string::npos) << result.errors;
    EXPECT_EQ(result.errors.find('\x1b'), std::string::npos);
  }

  /// Adds a plan and gives its identifier.
  std::string add(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"plan", "add"});
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output.substr(0, result.output.find('\n'));
  }

  const std::filesystem::path& container() const { return container_; }
  std::filesystem::path store() const { return container_ / "Vantrel.sqlite"; }

 private:
  TemporaryDirectory directory_;
  std::filesystem::path container_ = directory_ / "group";
};

}  // namespace vantrel::test
