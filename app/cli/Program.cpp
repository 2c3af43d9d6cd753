#include "cli/Program.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/Suggestion.h"
#include "common/ExitCode.h"
#include "common/ProgramStart.h"

namespace vantrel::cli {

namespace {

/// "plan add"; empty for the program itself.
std::string commandPath(const CLI::App& parser) {
  const CLI::App* parent = parser.get_parent();
  if (!parent) return "";
  const std::string before = commandPath(*parent);
  return before.empty() ? parser.get_name() : before + " " + parser.get_name();
}

std::string helpHint(const CLI::App& parser) {
  const std::string path = commandPath(parser);
  return "; see vantrel " + (path.empty() ? "" : path + " ") + "--help";
}

Error unknownWord(const std::string& word, const char* kind, const std::vector<std::string>& known,
                  const CLI::App& parser) {
  const auto nearest = nearestWord(word, known);
  if (nearest == word) {
    return failure(kExitUsage, word, "expected after " + commandPath(parser));
  }
  return failure(kExitUsage, word,
                 std::string("unknown ") + kind +
                     (nearest ? "; did you mean " + *nearest + "?" : helpHint(parser)));
}

Error unknownOption(const std::string& word, const CLI::App& parser) {
  std::vector<std::string> names;
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    for (const auto* option : at->get_options()) {
      for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return unknownWord(word.substr(0, word.find('=')), "option", names, parser);
}

Error unknownCommand(const std::string& word, const CLI::App& parser) {
  std::vector<std::string> names;
  for (const auto* command : parser.get_subcommands({})) names.push_back(command->get_name());
  return unknownWord(word, "command", names, parser);
}

/// Null if neither `parser` nor a parent of it has the option.
const CLI::Option* findOption(const CLI::App& parser, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    if (const auto* option = at->get_option_no_throw(name)) return option;
  }
  return nullptr;
}

/// Whether the word after `word` is its value.
bool takesNextWord(const CLI::App& parser, const std::string& word) {
  const auto* option = word.starts_with('-') ? findOption(parser, word) : nullptr;
  return option && option->get_items_expected_min() > 0 && word.find('=') == std::string::npos;
}

/// Returns the group that the first word names; null if there is none.
const CommandGroup* requestedGroup(const std::vector<std::string>& arguments) {
  std::size_t first = 0;
  while (first < arguments.size() && arguments[first].starts_with('-')) {
    first += arguments[first] == "--color" ? 2 : 1;
  }
  const auto groups = commandGroups();
  const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& one) {
    return first < arguments.size() && one.name == arguments[first];
  });
  return group == groups.end() ? nullptr : &*group;
}

/// Returns the parser of the command in `arguments`, or the error for an unknown command.
Expected<CLI::App*> requestedCommand(CLI::App& root, const std::vector<std::string>& arguments) {
  CLI::App* parser = &root;
  std::optional<Error> unknown;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const auto commands = parser->get_subcommands({});
    const std::string& word = arguments[i];
    if (commands.empty()) break;
    if (takesNextWord(*parser, word)) {
      ++i;
    } else if (word.starts_with('-')) {
      if (word.size() > 2 && !unknown && !findOption(*parser, word)) {
        unknown = unknownOption(word, *parser);
      }
    } else {
      const auto command = std::find_if(commands.begin(), commands.end(),
                                        [&](const auto* one) { return one->get_name() == word; });
      // The word may be the value of an unknown option.
      if (command == commands.end()) {
        return tl::unexpected(unknown.value_or(unknownCommand(word, *parser)));
      }
      parser = *command;
    }
  }
  return parser;
}

std::vector<std::string> withHiddenSigns(std::vector<std::string> arguments,
                                         const CLI::App& parser) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string& word = arguments[i];
    const bool isNumber = word.size() > 2 && word.starts_with("-.") && std::isdigit(word[2]);
    if (isNumber && !(i > 0 && takesNextWord(parser, arguments[i - 1]))) {
      word.insert(0, 1, kHiddenSign);
    }
  }
  return arguments;
}

bool isInfiniteOrNaN(const std::string& word) {
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return stop == end && error == std::errc() && !std::isfinite(number);
}

/// Returns the last command that CLI11 reached.
const CLI::App& deepestParsed(const CLI::App& root) {
  const CLI::App* parser = &root;
  while (!parser->get_subcommands().empty()) parser = parser->get_subcommands().front();
  return *parser;
}

/// Returns CLI11's message, reworded if it is about the value of an option.
std::string messageOf(const CLI::ParseError& error) {
  std::string message = error.what();
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ArgumentMismatch)) return message;
  const auto nameEnd = message.find(": ");
  return message.substr(0, nameEnd) + (message.find("received") == std::string::npos
                                           ? ": expected a value"
                                           : ": given more than once");
}

int failUsage(const CLI::ParseError& error, const CLI::App& root, Session& session) {
  const CLI::App& parser = deepestParsed(root);
  if (const auto remaining = root.remaining(true); !remaining.empty()) {
    const std::string word = typedText(remaining.front());
    if (isInfiniteOrNaN(word)) {
      return session.console.fail(failure(kExitUsage, word, "expected a finite number"));
    }
    if (remaining.front().starts_with('-')) {
      return session.console.fail(unknownOption(word, parser));
    }
    return session.console.fail(
        failure(kExitUsage, word, "unexpected argument" + helpHint(parser)));
  }
  if (!parser.get_subcommands({}).empty()) {
    session.console.tell(root.help());
    return kExitUsage;
  }
  return session.console.fail(
      failure(kExitUsage, commandPath(parser), messageOf(error) + helpHint(parser)));
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
  Session session;
  session.console.setColor(Console::terminalShowsColor());
  CLI::App root;
  const CommandGroup* group = requestedGroup(arguments);
  describeProgram(root, session, group);
  try {
    if (group) group->fill(*root.get_subcommand(group->name), session);
    const auto parser = requestedCommand(root, arguments);
    if (!parser) return session.console.finish(session.console.fail(parser.error()));
    // Called unless --help or --version is given.
    root.parse_complete_callback([] {
      if (const auto checked = checkEnvironment(); !checked) throw ArgumentError{checked.error()};
    });
    auto words = withHiddenSigns(arguments, **parser);
    std::reverse(words.begin(), words.end());
    root.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    session.console.print(root.help());
  } catch (const CLI::CallForVersion& version) {
    session.console.print(std::string(version.what()) + "\n");
  } catch (const ArgumentError& invalid) {
    session.exitCode = session.console.fail(invalid.error);
  } catch (const CLI::ParseError& error) {
    session.exitCode = failUsage(error, root, session);
  } catch (const std::exception& fault) {
    session.exitCode = session.console.fail(failure(kExitInternal, "internal error", fault.what()));
  }
  return session.console.finish(session.exitCode);
}

}  // namespace vantrel::cli
