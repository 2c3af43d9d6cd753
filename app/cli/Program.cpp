#include "cli/Program.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <exception>
#include <string>
#include <vector>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/Suggestion.h"

namespace vantrel::cli {

namespace {

/// "plan add"; empty for the program itself.
std::string commandPath(const CLI::App& parser) {
  const CLI::App* above = parser.get_parent();
  if (!above) return "";
  const std::string before = commandPath(*above);
  return before.empty() ? parser.get_name() : before + " " + parser.get_name();
}

std::string helpCommand(const CLI::App& parser) {
  const std::string path = commandPath(parser);
  return path.empty() ? "vantrel --help" : "vantrel " + path + " --help";
}

/// The error for a word that none of `known` is.
Error unknownWord(const std::string& word, const char* kind, const std::vector<std::string>& known,
                  const CLI::App& parser) {
  std::string why = std::string("no such ") + kind;
  const auto nearest = nearestWord(word, known);
  if (nearest == word) {
    why = "belongs behind " + commandPath(parser);
  } else if (nearest) {
    why += "; did you mean " + *nearest + "?";
  } else {
    why += "; see " + helpCommand(parser);
  }
  return failure(kExitUsage, word, why);
}

/// The group that the first word of the line names; null for none.
const CommandGroup* groupAskedFor(const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--color") ++i;
    if (word.starts_with('-')) continue;
    const auto groups = commandGroups();
    const auto group = std::find_if(groups.begin(), groups.end(),
                                    [&](const auto& one) { return one.name == word; });
    return group == groups.end() ? nullptr : &*group;
  }
  return nullptr;
}

CLI::App* commandNamed(CLI::App& parser, const std::string& name) {
  for (auto* command : parser.get_subcommands({})) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

std::vector<std::string> commandNames(const CLI::App& parser) {
  std::vector<std::string> names;
  for (const auto* command : parser.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& parser) {
  std::vector<std::string> names;
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    for (const auto* option : at->get_options()) {
      for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

/// The words that name commands, walked down from `root`; what is filled on the way decides what
/// can be parsed. The command that they lead to, else what is wrong.
Expected<CLI::App*> fillCommands(CLI::App& root, Session& session,
                                 const std::vector<std::string>& arguments) {
  CLI::App* parser = &root;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--color") ++i;
    if (word.starts_with('-')) continue;
    CLI::App* below = commandNamed(*parser, word);
    if (!below) {
      return tl::make_unexpected(unknownWord(word, "command", commandNames(*parser), *parser));
    }
    if (parser == &root) groupAskedFor(arguments)->fill(*below, session);
    parser = below;
    if (parser->get_subcommands({}).empty()) break;
  }
  return parser;
}

/// Whether the word is an option behind which a value must stand.
bool wantsValue(const CLI::App& parser, const std::string& word) {
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    if (const auto* option = at->get_option_no_throw(word)) {
      return option->get_items_expected_min() > 0;
    }
  }
  return false;
}

std::vector<std::string> withHiddenSigns(std::vector<std::string> arguments,
                                         const CLI::App& parser) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string& word = arguments[i];
    const bool isNumber = word.size() > 2 && word.starts_with("-.") && std::isdigit(word[2]);
    if (isNumber && !(i > 0 && wantsValue(parser, arguments[i - 1])))
      word.insert(0, 1, kHiddenSign);
  }
  return arguments;
}

bool isInfiniteOrNaN(const std::string& word) {
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return stop == end && error == std::errc() && !std::isfinite(number);
}

/// The command that the line named, or the last word on the way to one.
const CLI::App& deepestParsed(const CLI::App& root) {
  const CLI::App* parser = &root;
  while (!parser->get_subcommands().empty()) parser = parser->get_subcommands().front();
  return *parser;
}

int failUsage(const CLI::ParseError& error, const CLI::App& root, Session& session) {
  const CLI::App& parser = deepestParsed(root);
  for (const auto& left : root.remaining(true)) {
    const std::string word = typedText(left);
    if (isInfiniteOrNaN(word)) {
      return session.console.fail(failure(kExitUsage, word, "allowed are finite numbers"));
    }
    if (left.starts_with('-')) {
      return session.console.fail(
          unknownWord(word.substr(0, word.find('=')), "option", optionNames(parser), parser));
    }
    return session.console.fail(
        failure(kExitUsage, word, "one argument too many; see " + helpCommand(parser)));
  }
  if (!parser.get_subcommands({}).empty()) {
    session.console.tell(root.help());
    return kExitUsage;
  }
  return session.console.fail(failure(kExitUsage, commandPath(parser),
                                      std::string(error.what()) + "; see " + helpCommand(parser)));
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
  Session session;
  session.console.setColorMode(Console::ColorMode::kAuto);
  CLI::App root;
  describeProgram(root, session, groupAskedFor(arguments));
  try {
    const auto parser = fillCommands(root, session, arguments);
    if (!parser) return session.console.finish(session.console.fail(parser.error()));
    auto words = withHiddenSigns(arguments, **parser);
    std::reverse(words.begin(), words.end());
    root.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    session.console.print(root.help());
  } catch (const CLI::CallForVersion& version) {
    session.console.print(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    session.exitCode = failUsage(error, root, session);
  } catch (const std::exception& fault) {
    session.exitCode = session.console.fail(failure(kExitInternal, "internal error", fault.what()));
  }
  return session.console.finish(session.exitCode);
}

}  // namespace vantrel::cli
