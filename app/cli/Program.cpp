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
#include "cli/Suggestion.h"
#include "common/ExitCode.h"
#include "common/ProgramStart.h"

namespace vantrel::cli {

namespace {

/// Carries an error out of the parser.
struct Failure {
  Error error;
};

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

/// The words that may name commands: no options, nor the value of the one that every command knows.
std::vector<std::string> bareWords(const std::vector<std::string>& arguments) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!arguments[i].starts_with('-')) words.push_back(arguments[i]);
    if (arguments[i] == "--color") ++i;
  }
  return words;
}

/// The group that the first of the words names; null for none.
const CommandGroup* groupAskedFor(const std::vector<std::string>& words) {
  const auto groups = commandGroups();
  const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& one) {
    return !words.empty() && one.name == words.front();
  });
  return group == groups.end() ? nullptr : &*group;
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

/// The command that the words lead to from `root`, else what is wrong.
Expected<CLI::App*> commandAskedFor(CLI::App& root, const std::vector<std::string>& words) {
  CLI::App* parser = &root;
  for (const auto& word : words) {
    const auto all = parser->get_subcommands({});
    if (all.empty()) break;
    const auto below = std::find_if(all.begin(), all.end(),
                                    [&](const auto* one) { return one->get_name() == word; });
    if (below == all.end()) {
      return tl::unexpected(unknownWord(word, "command", commandNames(*parser), *parser));
    }
    parser = *below;
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
  session.console.setColor(Console::terminalShowsColor());
  CLI::App root;
  const auto commands = bareWords(arguments);
  const CommandGroup* group = groupAskedFor(commands);
  describeProgram(root, session, group);
  try {
    if (group) group->fill(*root.get_subcommand(group->name), session);
    const auto parser = commandAskedFor(root, commands);
    if (!parser) return session.console.finish(session.console.fail(parser.error()));
    // Not for --help and --version.
    root.parse_complete_callback([] {
      if (const auto sane = checkEnvironment(); !sane) throw Failure{sane.error()};
    });
    auto words = withHiddenSigns(arguments, **parser);
    std::reverse(words.begin(), words.end());
    root.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    session.console.print(root.help());
  } catch (const CLI::CallForVersion& version) {
    session.console.print(std::string(version.what()) + "\n");
  } catch (const Failure& refused) {
    session.exitCode = session.console.fail(refused.error);
  } catch (const CLI::ParseError& error) {
    session.exitCode = failUsage(error, root, session);
  } catch (const std::exception& fault) {
    session.exitCode = session.console.fail(failure(kExitInternal, "internal error", fault.what()));
  }
  return session.console.finish(session.exitCode);
}

}  // namespace vantrel::cli
