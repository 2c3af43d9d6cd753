#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "cli/Console.h"

namespace vantrel::cli {

/// Tells on standard error how far long work is: only on a terminal, not when quiet, and nothing
/// before a second has passed. The line is gone at the end.
class Progress {
 public:
  Progress(std::string what, Console& console);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void report(std::size_t done, std::size_t all);

 private:
  std::string what_;
  Console& console_;
  bool isShown_ = false;
  bool isWanted_;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace vantrel::cli
