#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"
#include "cli/CommandGroup.h"

namespace vantrel::cli {

/// Sets `run` as the action of `parser`; its result is the exit code. Returns the options that are
/// passed to `run`, owned by `parser`, for the caller to bind to the parser's options.
template <typename Options>
Options& setCommand(CLI::App& parser, Session& session, int (*run)(const Options&, Console&)) {
  const auto options = std::make_shared<Options>();
  parser.callback([=, &session] { session.exitCode = run(*options, session.console); });
  return *options;
}

/// A command of a group.
template <typename Options>
struct Command {
  CLI::App& parser;
  Options& options;
};
template <typename Options>
Command<Options> addCommand(CLI::App& group, Session& session, const char* name,
                            const char* description, int (*run)(const Options&, Console&)) {
  CLI::App& parser = *group.add_subcommand(name, description);
  return {parser, setCommand(parser, session, run)};
}
/// Adds a command without options.
inline void addCommand(CLI::App& group, Session& session, const char* name, const char* description,
                       int (*run)(Console&)) {
  group.add_subcommand(name, description)->callback([run, &session] {
    session.exitCode = run(session.console);
  });
}

/// Thrown by callbacks of the parser for an invalid value; `runProgram` reports it.
struct ArgumentError {
  Error error;
};

/// Adds an option, or a required argument if `name` has no hyphens. `parse` converts its text while
/// the command line is parsed, and is called with `name` and the text. `target` must outlive the
/// parser.
template <typename T, typename Parse>
CLI::Option* addValueOption(CLI::App& parser, const std::string& name, std::optional<T>& target,
                            Parse parse, const std::string& valueName,
                            const std::string& description) {
  const auto store = [&target, parse, name](const CLI::results_t& values) {
    Expected<T> value = parse(name, typedText(values.front()));
    if (!value) throw ArgumentError{value.error()};
    target = std::move(*value);
    return true;
  };
  return parser.add_option(name, store, description)
      ->type_name(valueName)
      ->required(!name.starts_with('-'));
}

}  // namespace vantrel::cli
