#pragma once

#include "cli/CommandLineFixture.h"
#include "support/Python.h"

namespace vantrel::test {

/// Runs `vantrel` beside Python's property lists, which read and write the same settings.
class SettingsTest : public CommandLineTest {
 protected:
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
};

}  // namespace vantrel::test
