#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel::cli {

/// Called with consecutive pieces of a long text.
using TextSink = std::function<void(std::string_view)>;

/// The output of a command, data to standard output and messages to standard error, with the
/// options that all commands share. Not thread-safe.
class Console {
 public:
  bool isJson() const { return json_; }
  void setJson(bool json) { json_ = json; }
  bool isQuiet() const { return quiet_; }
  void setQuiet(bool quiet) { quiet_ = quiet; }
  void setColor(bool color) { color_ = color; }
  /// Whether standard output is a terminal with colours and $NO_COLOR is not set.
  static bool terminalShowsColor();
  /// Whether standard output is a terminal: words for people are left out elsewhere.
  static bool isTerminal();

  /// Buffers `text` for standard output; it is written unchanged.
  void print(std::string_view text);
  /// Writes the buffer. Returns false if standard output is closed or cannot be written, so that
  /// the caller can stop.
  bool flush();
  /// Returns `text`, with escape sequences around it if colour is on.
  std::string bold(std::string_view text) const;
  std::string dim(std::string_view text) const;

  static constexpr std::size_t kLabelWidth = 11;
  /// Returns the line "  Label      value\n", with the value after `width` cells for the label.
  std::string labelled(std::string_view label, std::string_view value,
                       std::size_t width = kLabelWidth) const;

  /// Flushes, then writes `text` to standard error unchanged.
  void tell(std::string_view text);
  /// Writes a hint to standard error if that is a terminal and --quiet was not given.
  void note(std::string_view text);
  /// Writes `error` to standard error as one line, line breaks escaped, with the candidates of
  /// `ambiguous` below. Returns the exit code for it.
  int fail(const Error& error);
  /// Flushes. Returns `exitCode`, or kExitInputOutput if standard output could not be written; a
  /// closed pipe is no error.
  int finish(int exitCode);

 private:
  bool json_ = false;
  bool quiet_ = false;
  bool color_ = false;
  std::string output_;
  int outputError_ = 0;
};

}  // namespace vantrel::cli
