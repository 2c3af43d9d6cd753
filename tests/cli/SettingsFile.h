#pragma once

#include "cli/CommandLineFixture.h"
#include "support/Python.h"

namespace vantrel::test {

/// Runs `vantrel` beside Python's property lists, which read and write the same settings.
class SettingsTest : public CommandLineTest {
 protected:
  ProgramResult vantrel(const std::vector<std::string>& arguments) const {
    return run(arguments, {{"XDG_CONFIG_HOME", config_.path()}});
  }
  /// Runs a command that is to say nothing.
  void expectQuiet(const std::vector<std::string>& arguments) const {
    const auto result = vantrel(arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
  }

  std::filesystem::path settings() const {
    return container() / "Library/Preferences/group.vantrel.vantrel.plist";
  }
  std::filesystem::path standardSettings() const { return config_ / "vantrel/vantrel.plist"; }
  /// A Python expression over the shared settings `p`.
  std::string python(const std::string& expression) const {
    return test::python(settings(), expression);
  }
  /// Python writes the dictionary of an expression in the form FMT_BINARY or FMT_XML.
  void dump(const std::string& dictionary, const std::string& form,
            const std::filesystem::path& file) const {
    std::filesystem::create_directories(file.parent_path());
    const auto result =
        runProgram({"python3", "-c",
                    "import plistlib, sys; from datetime import datetime; from plistlib import *; "
                    "open(sys.argv[1], 'wb').write(dumps(" +
                        dictionary + ", fmt=" + form + "))",
                    file});
    ASSERT_EQ(result.exitCode, 0) << result.errors;
  }

 private:
  TemporaryDirectory config_;
};

}  // namespace vantrel::test
