#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"
#include "cli/CommandGroup.h"

namespace vantrel::cli {

/// Makes the parser a command that `run` does; its result is the exit code. Where its options are
/// to leave what the command is given.
template <typename Given>
Given& setCommand(CLI::App& parser, Session& session, int (*run)(const Given&, Console&)) {
  const auto given = std::make_shared<Given>();
  parser.callback([=, &session] { session.exitCode = run(*given, session.console); });
  return *given;
}

/// A command below a group.
template <typename Given>
struct Command {
  CLI::App& parser;
  Given& given;
};
template <typename Given>
Command<Given> addCommand(CLI::App& group, Session& session, const char* name,
                          const char* description, int (*run)(const Given&, Console&)) {
  CLI::App& parser = *group.add_subcommand(name, description);
  return {parser, setCommand(parser, session, run)};
}
/// One that is given nothing.
inline void addCommand(CLI::App& group, Session& session, const char* name, const char* description,
                       int (*run)(Console&)) {
  group.add_subcommand(name, description)->callback([run, &session] {
    session.exitCode = run(session.console);
  });
}

/// An option, or an argument that must be given, whose value `parse` reads from its name and text;
/// `target` outlives the parsing. A value that `parse` refuses is a usage error with its message.
template <typename T, typename Parse>
CLI::Option* addValueOption(CLI::App& parser, const std::string& name, std::optional<T>& target,
                            Parse parse, const std::string& valueName,
                            const std::string& description) {
  const auto keep = [&target, parse, name](const CLI::results_t& values) {
    const Expected<T> value = parse(name, typedText(values.front()));
    if (!value) throw CLI::ValidationError(value.error().localizedDescription);
    target = *value;
    return true;
  };
  return parser.add_option(name, keep, description)
      ->type_name(valueName)
      ->required(!name.starts_with('-'));
}

}  // namespace vantrel::cli
