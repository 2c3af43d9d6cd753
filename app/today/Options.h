#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel {

/// The parsed command line.
struct Options {
  std::optional<std::string> link;  ///< Of the plan to show instead of the widget.
  std::optional<bool> autostart;    ///< Whether to start with the session; set it and exit.
  /// Lead times to store before exiting; empty turns reminders off.
  std::optional<std::vector<std::chrono::minutes>> reminders;
  bool service = false;    ///< Show no window until the desktop asks for one.
  std::string renderFile;  ///< "-" is standard output; empty to show a window.
  int width = 0;           ///< Of the picture, in logical pixels; 0 for the default.
  int height = 0;
  double scale = 1;
  bool expanded = false;
  std::optional<bool> dark;
  std::string systemVersion;

  /// Parses the arguments. Returns the exit code if the program is done, after printing help, the
  /// version or an error.
  static std::optional<int> parse(int argc, char** argv, Options& options);
  /// Adds the program's name and options to `app`, for parsing and for the manual page. `app`
  /// parses into `options`.
  static void describe(CLI::App& app, Options& options);
};

}  // namespace vantrel
