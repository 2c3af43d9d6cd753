#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel {

/// What the command line asks for.
struct Options {
  std::optional<std::string> link;  ///< Of the plan whose sheet is shown instead of the widget.
  std::optional<bool> autostart;    ///< Only sets whether the window opens with the session.
  /// Only sets how long before a shoot to remind of it; empty for no reminders.
  std::optional<std::vector<std::chrono::minutes>> reminders;
  bool service = false;    ///< Waits for the desktop's request to show something.
  std::string renderFile;  ///< Empty: a window; "-" is standard output.
  int width = 0;           ///< Of the picture, logical pixels; 0 is the usual size.
  int height = 0;
  double scale = 1;
  bool expanded = false;
  std::optional<bool> dark;
  std::string systemVersion;

  /// Reads the arguments. Prints help, version or what is wrong with them and gives the code to
  /// exit with when the program has nothing more to do.
  static std::optional<int> parse(int argc, char** argv, Options& options);
  /// Name and options of the program, for parsing and for its manual page; what `app` parses then
  /// is kept in `options`.
  static void describe(CLI::App& app, Options& options);
};

}  // namespace vantrel
