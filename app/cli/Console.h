#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel::cli {

/// Receives a long text piece by piece.
using TextSink = std::function<void(std::string_view)>;

/// Where a command's answers go: data to standard output, messages to standard error. Holds the
/// switches that every command knows.
class Console {
 public:
  bool isJson() const { return json_; }
  void setJson(bool json) { json_ = json; }
  bool isQuiet() const { return quiet_; }
  void setQuiet(bool quiet) { quiet_ = quiet; }
  void setColor(bool color) { color_ = color; }
  /// Whether standard output is a terminal that can show colour, and $NO_COLOR is not set.
  static bool terminalShowsColor();

  /// Adds to standard output, as it is; written in large pieces.
  void print(std::string_view text);
  /// Writes what was printed so far, for a reader that waits for it. False when nobody reads any
  /// more or it cannot be written: more need not be printed.
  bool flush();
  /// The text in bold or dimmed, where standard output shows that.
  std::string bold(std::string_view text) const;
  std::string dim(std::string_view text) const;

  /// One line of what is known of a thing: "  Label      value", with a line break.
  std::string labelled(std::string_view label, std::string_view value) const;
  static constexpr std::size_t kLabelWidth = 11;

  /// Writes to standard error, as it is.
  void tell(std::string_view text);
  /// A hint for a person, on standard error; only on a terminal, and not when quiet.
  void note(std::string_view text);
  /// Tells what went wrong in one line on standard error and gives the exit code to end with.
  int fail(const Error& error);
  /// Writes what is left and gives the exit code to end with: `exitCode`, unless standard output
  /// could not be written. A reader that went away is no failure.
  int finish(int exitCode);

 private:
  bool json_ = false;
  bool quiet_ = false;
  bool color_ = false;
  std::string output_;
  int outputError_ = 0;
};

}  // namespace vantrel::cli
