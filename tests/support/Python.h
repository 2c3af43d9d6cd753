#pragma once

#include <string>

#include "support/Guards.h"

namespace vantrel::test {

/// What a Python program prints that finds the content of a property list file as `p`: a reader
/// this project did not write.
inline std::string python(const std::filesystem::path& file, const std::string& expression) {
  const auto result =
      runProgram({"python3", "-c",
                  "import plistlib, sys; p = plistlib.load(open(sys.argv[1], 'rb')); print(" +
                      expression + ", end='')",
                  file});
  return result.output + result.errors;
}

}  // namespace vantrel::test
