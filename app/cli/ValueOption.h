#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "base/Error.h"
#include "cli/CommandGroup.h"

namespace vantrel::cli {

/// An option whose value `parse` reads from its name and text; `target` outlives the parsing. A
/// value that `parse` refuses is a usage error with its message.
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
  CLI::Option* option = parser.add_option(name, keep, description)->type_name(valueName);
  // A word for a person to read, not an option's name, stands in front of an argument's errors.
  return name.starts_with('-') ? option : option->required()->type_name("");
}

}  // namespace vantrel::cli
