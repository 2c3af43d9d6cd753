#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "cli/Console.h"

namespace vantrel::cli {

/// Shows the progress of long work on standard error if that is a terminal and --quiet was not
/// given. Prints nothing during the first second; the destructor clears the line.
class Progress {
 public:
  Progress(std::string title, Console& console);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void report(std::size_t done, std::size_t total);

 private:
  std::string title_;
  Console& console_;
  bool isShown_ = false;
  bool isEnabled_;
  std::chrono::steady_clock::time_point nextUpdate_;
};

}  // namespace vantrel::cli
