#include "Completions.h"

#include <algorithm>
#include <set>

namespace vantrel::tools {

namespace {

using Lines = std::string;

/// Returns `text` in single quotes, for any of the shells.
std::string shellQuoted(const std::string& text, const std::string& quote = "'\\''") {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? quote : std::string(1, c);
  return result + "'";
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

std::string functionName(const std::string& path) {
  std::string name = "_" + path;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

bool offers(const CommandTable& table, Offer offer) {
  const auto does = [offer](const auto& option) { return option.offer == offer; };
  return std::any_of(table.begin(), table.end(), [&](const auto& command) {
    return std::any_of(command.options.begin(), command.options.end(), does) ||
           std::any_of(command.arguments.begin(), command.arguments.end(), does);
  });
}

/// Returns the options that require a value, so that no value is taken for a command.
std::vector<std::string> optionsWithValue(const CommandTable& table) {
  std::set<std::string> names;
  for (const auto& command : table) {
    for (const auto& option : command.options) {
      if (!option.value.empty() && !option.isValueOptional) {
        names.insert(option.names.begin(), option.names.end());
      }
    }
  }
  return {names.begin(), names.end()};
}

std::vector<std::string> pathsBelowProgram(const CommandTable& table) {
  std::vector<std::string> paths;
  for (const auto& command : table) {
    if (!command.above().empty()) paths.push_back(shellQuoted(command.path));
  }
  return paths;
}

/// Shell commands that print the completions of a value.
constexpr const char* kZoneNames = "awk '/^[A-Z]/ { print $3 }' /usr/share/zoneinfo/zone.tab";
constexpr const char* kPlanIdentifiers = "vantrel plan list --plain 2>/dev/null | cut -f 1";

/// A shell's text for each kind of offer except words.
struct Offers {
  std::string nothing;
  std::string file;
  std::string plan;
  std::string zone;

  const std::string& of(Offer offer) const {
    return offer == Offer::kFile   ? file
           : offer == Offer::kPlan ? plan
           : offer == Offer::kZone ? zone
                                   : nothing;
  }
};

std::string bashOffer(const TableOption& option) {
  static const Offers kOffers = {":nothing", ":file", ":plan", ":zone"};
  return option.offer == Offer::kWords ? shellQuoted(joined(option.words, " "))
                                       : kOffers.of(option.offer);
}

/// Returns the part of a `case` that sets the offer for the values of a command's options.
Lines bashValues(const TableCommand& command) {
  Lines lines;
  for (const auto& option : command.options) {
    if (option.value.empty()) continue;
    std::vector<std::string> patterns;
    for (const auto& name : option.names) {
      patterns.push_back(shellQuoted(command.path) + "*" + shellQuoted(" " + name));
    }
    lines += "    " + joined(patterns, "|") + ") offer=" + bashOffer(option) + " ;;\n";
  }
  return lines;
}

Lines bashWords(const CommandTable& table, const TableCommand& command) {
  std::vector<std::string> options;
  for (const auto& option : command.options) {
    options.insert(options.end(), option.names.begin(), option.names.end());
  }
  std::vector<std::string> commands;
  for (const auto& below : commandsBelow(table, command)) commands.push_back(below.name());
  Lines lines = "    " + shellQuoted(command.path + " ") + "*)\n";
  if (!options.empty()) lines += "      options+=" + shellQuoted(" " + joined(options, " ")) + "\n";
  lines += "      commands=" + shellQuoted(joined(commands, " ")) + "\n      argument=:nothing\n";
  for (const auto& argument : command.arguments) {
    if (argument.offer != Offer::kNothing) {
      lines += "      argument=" + bashOffer(argument) + "\n";
      break;
    }
  }
  return lines + "      ;;&\n";
}

constexpr const char* kBashEnd = R"sh(  if [[ -z $offer && $cur == -* ]]; then
    offer=$options
  elif [[ -z $offer && -n $commands ]]; then
    offer=$commands
  elif [[ -z $offer ]]; then
    offer=$argument
  fi
  case $offer in
    :nothing) ;;
    :file) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    :plan) mapfile -t COMPREPLY < <(compgen -W "$(PLANS)" -- "$cur") ;;
    :zone) mapfile -t COMPREPLY < <(compgen -W "$(ZONES)" -- "$cur") ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$offer" -- "$cur") ;;
  esac
}
)sh";

std::string replaced(std::string text, const std::string& word, const std::string& by) {
  if (const auto at = text.find(word); at != std::string::npos) text.replace(at, word.size(), by);
  return text;
}

/// Returns the zsh action for a value: "(auto always)", "_files".
std::string zshAction(const TableOption& option) {
  static const Offers kOffers = {" ", "_files", "_vantrel_plans", "_time_zone"};
  return option.offer == Offer::kWords ? "(" + joined(option.words, " ") + ")"
                                       : kOffers.of(option.offer);
}

/// Escapes brackets and colons, which end a part of a zsh specification.
std::string zshText(std::string text) {
  std::replace(text.begin(), text.end(), '[', '(');
  std::replace(text.begin(), text.end(), ']', ')');
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::string result;
  for (const char c : text) result += c == ':' ? "\\:" : std::string(1, c);
  return result;
}

Lines zshOptions(const TableCommand& command) {
  Lines lines;
  for (const auto& option : command.options) {
    for (const auto& name : option.names) {
      std::string spec = "(" + joined(option.names, " ") + ")" + name;
      const std::string optional = option.isValueOptional ? "::" : ":";
      if (!option.value.empty() && name.starts_with("--")) spec += "=";
      spec += "[" + zshText(option.description) + "]";
      if (!option.value.empty()) {
        spec += optional + zshText(option.words.empty() ? option.value : "value") + ":" +
                zshAction(option);
      }
      lines += " \\\n    " + shellQuoted(spec);
    }
  }
  return lines;
}

Lines zshArguments(const TableCommand& command) {
  Lines lines;
  for (const auto& argument : command.arguments) {
    const std::string optional = argument.isRequired ? ":" : "::";
    lines += " \\\n    " +
             shellQuoted(optional + zshText(argument.names.front()) + ":" + zshAction(argument));
  }
  return lines;
}

/// Returns the options of the command and of all above it.
Lines zshOptionsAt(const CommandTable& table, const TableCommand& command) {
  Lines lines = zshOptions(command);
  for (const auto& one : table) {
    if (one.path == command.above()) lines += zshOptionsAt(table, one);
  }
  return lines;
}

Lines zshFunction(const CommandTable& table, const TableCommand& command) {
  const CommandTable below = commandsBelow(table, command);
  Lines lines = functionName(command.path) + "() {\n";
  if (below.empty()) {
    return lines + "  _arguments -s -S :" + zshOptionsAt(table, command) + zshArguments(command) +
           "\n}\n\n";
  }
  lines += "  local curcontext=$curcontext state line\n  _arguments -C -s :" +
           zshOptionsAt(table, command) +
           " \\\n    '(-): :->command' \\\n    '(-)*:: :->rest' && return\n"
           "  case $state in\n    command)\n      local -a commands=(\n";
  for (const auto& one : below) {
    lines += "        " + shellQuoted(one.name() + ":" + one.description) + "\n";
  }
  lines +=
      "      )\n      _describe -t commands command commands\n      ;;\n"
      "    rest)\n      case $line[1] in\n";
  for (const auto& one : below) {
    lines += "        " + one.name() + ") " + functionName(one.path) + " ;;\n";
  }
  return lines + "      esac\n      ;;\n  esac\n}\n\n";
}

constexpr const char* kZshPlans = R"sh(_vantrel_plans() {
  local -a plans
  plans=(${(f)"$(vantrel plan list --plain 2>/dev/null | cut -f 1,7 | grep -v '^x-' | tr '\t' ':')"})
  _describe -t plans plan plans
}

)sh";

std::string fishQuoted(const std::string& text) {
  std::string escaped;
  for (const char c : text) escaped += c == '\\' ? "\\\\" : std::string(1, c);
  return shellQuoted(escaped, "\\'");
}

std::string fishOffer(const TableOption& option) {
  static const Offers kOffers = {"", " -F",
                                 " -a '(vantrel plan list --plain 2>/dev/null | cut -f 1,7)'",
                                 " -a " + fishQuoted("(" + std::string(kZoneNames) + ")")};
  return option.offer == Offer::kWords ? " -a " + fishQuoted(joined(option.words, " "))
                                       : kOffers.of(option.offer);
}

Lines fishCommand(const CommandTable& table, const TableCommand& command) {
  const std::string program = table.front().path;
  std::string function = "_" + functionName(program) + "_at ";
  std::replace(function.begin(), function.end(), '-', '_');
  const std::string start = "complete -c " + program;
  const std::string exactly = " -n " + fishQuoted(function + "= '" + command.path + "'");
  const std::string orBelow = " -n " + fishQuoted(function + "^ '" + command.path + "'");
  Lines lines;
  for (const auto& below : commandsBelow(table, command)) {
    lines +=
        start + exactly + " -a " + below.name() + " -d " + fishQuoted(below.description) + "\n";
  }
  for (const auto& option : command.options) {
    lines += start + (command.above().empty() ? "" : orBelow);
    for (const auto& name : option.names) {
      lines += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.value.empty()) {
      lines += option.isValueOptional ? "" : option.offer == Offer::kFile ? " -r" : " -x";
      lines += fishOffer(option);
    }
    lines += " -d " + fishQuoted(option.description) + "\n";
  }
  for (const auto& argument : command.arguments) {
    if (argument.offer != Offer::kNothing) lines += start + exactly + fishOffer(argument) + "\n";
  }
  return lines;
}

constexpr const char* kFishAt = R"sh(function NAME --argument-names how wanted
    set -l at PROGRAM
    set -l skips no
    for word in (commandline -opc)[2..]
        if test $skips = yes
            set skips no
        else if contains -- $word OPTIONS
            set skips yes
        else if contains -- "$at $word" PATHS
            set at "$at $word"
        end
    end
    test $at = $wanted; or begin
        test $how = ^; and string match -q -- "$wanted *" $at
    end
end
)sh";

std::string heading(const std::string& program) {
  return "# Completions of " + program + ", generated from its table of commands and options.\n";
}

}  // namespace

std::string bashCompletions(const CommandTable& table) {
  const std::string& program = table.front().path;
  std::string function = functionName(program);
  std::replace(function.begin(), function.end(), '-', '_');
  Lines lines = heading(program) + "\n" + function + "() {\n" +
                "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}\n"
                "  local at=" +
                program +
                " word commands='' options='' argument='' offer='' i\n"
                "  COMPREPLY=()\n"
                "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
                "    word=${COMP_WORDS[i]}\n"
                "    case $word in\n      " +
                joined(optionsWithValue(table), "|") + ") ((i++)); continue ;;\n    esac\n";
  if (table.size() > 1) {
    lines += "    case \"$at $word\" in\n      " + joined(pathsBelowProgram(table), "|") +
             ") at=\"$at $word\" ;;\n    esac\n";
  }
  lines +=
      "  done\n"
      "  # The shell splits --option=value into three words.\n"
      "  if [[ $cur == '=' ]]; then\n    cur=''\n"
      "  elif [[ $prev == '=' ]]; then\n    prev=${COMP_WORDS[COMP_CWORD - 2]}\n  fi\n"
      "  case \"$at $prev\" in\n";
  for (auto command = table.rbegin(); command != table.rend(); ++command) {
    lines += bashValues(*command);
  }
  lines += "  esac\n  case \"$at \" in\n";
  for (const auto& command : table) lines += bashWords(table, command);
  lines +=
      "  esac\n" + replaced(replaced(kBashEnd, "PLANS", kPlanIdentifiers), "ZONES", kZoneNames);
  return lines + "complete -F " + function + " " + program + "\n";
}

std::string zshCompletions(const CommandTable& table) {
  const std::string& program = table.front().path;
  Lines lines = "#compdef " + program + "\n" + heading(program) + "\n";
  if (offers(table, Offer::kPlan)) lines += kZshPlans;
  for (const auto& command : table) lines += zshFunction(table, command);
  return lines + functionName(program) + " \"$@\"\n";
}

std::string fishCompletions(const CommandTable& table) {
  const std::string& program = table.front().path;
  Lines lines = heading(program);
  if (table.size() > 1) {
    std::string at = replaced(kFishAt, "NAME", "_" + functionName(program) + "_at");
    at = replaced(at, "PROGRAM", program);
    at = replaced(at, "OPTIONS", joined(optionsWithValue(table), " "));
    lines += replaced(at, "PATHS", joined(pathsBelowProgram(table), " "));
  }
  lines += "complete -c " + program + " -f\n";
  for (const auto& command : table) lines += fishCommand(table, command);
  return lines;
}

}  // namespace vantrel::tools
