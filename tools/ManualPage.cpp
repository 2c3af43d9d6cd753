#include "ManualPage.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace vantrel::tools {

namespace {

/// Returns plain text escaped for man(7); the non-ASCII characters of descriptions become escapes.
std::string escaped(const std::string& text) {
  static const std::map<std::string, std::string> kNames = {
      {"…", "..."}, {"°", "\\(de"}, {"’", "\\(cq"}, {"“", "\\(lq"}, {"”", "\\(rq"}, {"–", "\\(en"}};
  std::string result = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (std::size_t at = 0; at < text.size();) {
    const auto name = std::find_if(kNames.begin(), kNames.end(), [&](const auto& one) {
      return text.compare(at, one.first.size(), one.first) == 0;
    });
    if (name != kNames.end()) {
      result += name->second;
      at += name->first.size();
      continue;
    }
    const char c = text[at++];
    if (c == '\n') {
      result += "\n.br\n";
    } else {
      result += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    }
  }
  return result;
}

std::string valueText(const TableOption& option) {
  if (option.value.empty()) return "";
  const std::string value = option.words.empty() ? "\\fI" + escaped(option.value) + "\\fR"
                                                 : "\\fB" + escaped(option.value) + "\\fR";
  return option.isValueOptional ? " [" + value + "]" : " " + value;
}

std::string entry(const TableOption& option, bool isArgument) {
  std::string names;
  for (const auto& name : option.names) {
    names += names.empty() ? "" : ", ";
    names += (isArgument ? "\\fI" : "\\fB") + escaped(name) + "\\fR";
  }
  const bool hasOwnValue = !isArgument || option.value != option.names.front();
  return ".TP\n" + names + (hasOwnValue ? valueText(option) : "") + "\n" +
         escaped(option.description) + "\n";
}

std::string entries(const TableCommand& command) {
  std::string text;
  for (const auto& argument : command.arguments) text += entry(argument, true);
  for (const auto& option : command.options) text += entry(option, false);
  return text;
}

std::string section(const TableCommand& command) {
  std::string text = ".SS " + escaped(command.path);
  if (!command.options.empty()) text += " \\fR[\\fIOPTION\\fR...]";
  for (const auto& argument : command.arguments) {
    const std::string name = "\\fI" + escaped(argument.names.front()) + "\\fR";
    text += argument.isRequired ? " " + name : " \\fR[" + name + "]";
  }
  return text + "\n" + escaped(command.description) + ".\n" + entries(command);
}

std::string sections(const CommandTable& table) {
  std::string text;
  for (const auto& command : table) {
    if (!command.above().empty() && commandsBelow(table, command).empty()) text += section(command);
  }
  return text;
}

/// Breaks long lines, of which linters warn, except requests and unfilled text.
std::string wrapped(const std::string& page) {
  constexpr std::size_t kWidth = 80;
  std::string result;
  std::istringstream lines(page);
  bool isFilled = true;
  for (std::string line; std::getline(lines, line);) {
    if (line == ".nf" || line == ".fi") isFilled = line == ".fi";
    while (isFilled && line.size() > kWidth && !line.starts_with('.')) {
      const auto space = line.rfind(' ', kWidth);
      // Do not begin a line with a dot: it would be a request.
      if (space == std::string::npos || line.compare(space + 1, 1, ".") == 0) break;
      result += line.substr(0, space) + "\n";
      line = line.substr(space + 1);
    }
    result += line + "\n";
  }
  return result;
}

void replace(std::string& text, const std::string& word, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += by.size()) {
    text.replace(at, word.size(), by);
  }
}

}  // namespace

std::string manualPage(const std::string& prose, const CommandTable& table, const std::string& date,
                       const std::string& version) {
  std::string page;
  std::istringstream lines(prose);
  for (std::string line; std::getline(lines, line);) {
    if (line == "@OPTIONS@") {
      page += entries(table.front());
    } else if (line == "@COMMANDS@") {
      page += sections(table);
    } else {
      replace(line, "@DATE@", date);
      replace(line, "@VERSION@", version);
      page += line + "\n";
    }
  }
  return wrapped(page);
}

}  // namespace vantrel::tools
