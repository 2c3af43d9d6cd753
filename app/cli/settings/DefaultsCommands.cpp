#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/settings/PropertyListText.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "defaults/VantrelUserDefaults.h"

namespace vantrel::cli {

namespace {

constexpr std::array kTypes = {"bool", "int", "float", "double", "string", "date", "data"};

struct Request {
  std::optional<std::string> key;
  std::optional<std::string> type;
  std::optional<std::string> value;
  Suite suite = Suite::kShared;
};

Error missingKey(const std::string& key) {
  return failure(kExitMissing, key, "key not found; see vantrel defaults list");
}

Expected<std::string> typeFromArgument(const std::string& option, const std::string& text) {
  if (std::find(kTypes.begin(), kTypes.end(), text) != kTypes.end()) return text;
  return invalidArgument(option, text, "bool, int, float, double, string, date or data");
}

Expected<std::string> keyFromArgument(const std::string& option, const std::string& text) {
  if (!text.empty()) return textFromArgument(option, text);
  return invalidArgument(option, text, "a key");
}

/// Returns the stored value converted to `type` as by the getters of `UserDefaults`.
Expected<PropertyList> valueAs(const std::string& type, const UserDefaults& defaults,
                               const std::string& key) {
  using Kind = PropertyList::Kind;
  const PropertyList value = defaults.objectForKey(key);
  if (typeOfValue(value) == type) return value;
  const Kind kind = value.kind();
  const bool scalar = kind == Kind::kBoolean || kind == Kind::kInteger || kind == Kind::kReal ||
                      kind == Kind::kString;
  if (scalar && type == "bool") return PropertyList::boolean(defaults.boolForKey(key));
  if (scalar && type == "int") return PropertyList::integer(defaults.integerForKey(key));
  if (scalar && type == "double") return PropertyList::real(defaults.doubleForKey(key));
  if (scalar && type == "float") {
    return PropertyList::real(decimalOfFloat(defaults.floatForKey(key)));
  }
  return tl::unexpected(failure(
      kExitBadData, key, "expected a value of type " + type + ", got " + typeOfValue(value)));
}

int readKey(const Request& request, Console& console) {
  const std::string& key = *request.key;
  const auto defaults = settingsForReading(request.suite);
  if (!defaults) return console.fail(defaults.error());
  const PropertyList stored = (*defaults)->objectForKey(key);
  if (!stored) return console.fail(missingKey(key));
  const auto value =
      request.type ? valueAs(*request.type, **defaults, key) : Expected<PropertyList>(stored);
  if (!value) return console.fail(value.error());
  if (console.isJson()) {
    console.print(jsonText(Json{{"key", key},
                                {"type", request.type.value_or(typeOfValue(*value))},
                                {"value", jsonOfValue(*value)}}));
  } else {
    const auto text = value->asString();
    console.print((text ? printableLines(*text, "") : textOfValue(*value)) + "\n");
  }
  return kExitDone;
}

Expected<std::string> standardInput() {
  std::string content;
  std::array<char, 1 << 16> piece{};
  while (const auto count = std::fread(piece.data(), 1, piece.size(), stdin)) {
    content.append(piece.data(), count);
    if (content.size() > PropertyList::kMaxBytes) {
      return tl::unexpected(failure(kExitBadData, "standard input", "too large for a value"));
    }
  }
  if (!std::ferror(stdin)) return content;
  return tl::unexpected(failure(kExitInputOutput, "standard input", std::strerror(errno)));
}

/// `text` is VALUE; "-" reads standard input: raw data, or text without its last line break.
Expected<PropertyList> newValue(const std::string& type, const std::string& text) {
  if (text != "-") return valueFromText(type, text);
  return standardInput().and_then([&](std::string content) -> Expected<PropertyList> {
    if (type == "data") return PropertyList::data(std::as_bytes(std::span(content)));
    if (content.ends_with('\n')) content.pop_back();
    return valueFromText(type, content);
  });
}

int writeKey(const Request& request, Console& console) {
  const auto value = newValue(request.type.value_or("string"), *request.value);
  if (!value) return console.fail(value.error());
  const auto write = [&](UserDefaults& defaults) -> Expected<void> {
    defaults.setObject(*value, *request.key);
    return {};
  };
  return changeSettings(console, write, request.suite);
}

int deleteKey(const Request& request, Console& console) {
  // Leaves a damaged file alone: it has no key to delete.
  const auto readable = settingsForReading(request.suite);
  if (!readable) return console.fail(readable.error());
  const auto remove = [&](UserDefaults& defaults) -> Expected<void> {
    if (!defaults.objectForKey(*request.key)) return tl::unexpected(missingKey(*request.key));
    defaults.removeObjectForKey(*request.key);
    return {};
  };
  return changeSettings(console, remove, request.suite);
}

std::string listText(const std::vector<std::pair<std::string, PropertyList>>& entries,
                     const Console& console) {
  constexpr std::size_t kTypeWidth = 12;
  std::size_t width = 0;
  for (const auto& [key, value] : entries) width = std::max(width, cellWidth(printable(key)));
  std::string text;
  for (const auto& [key, value] : entries) {
    const auto data = value.asData();
    text += paddedToCells(printable(key), width) + "  " +
            console.dim(paddedToCells(typeOfValue(value), kTypeWidth)) +
            (data ? std::to_string(data->size()) + " bytes" : textOfValue(value)) + "\n";
  }
  return text;
}

int listKeys(const Request& request, Console& console) {
  const auto defaults = settingsForReading(request.suite);
  if (!defaults) return console.fail(defaults.error());
  auto entries = (*defaults)->dictionaryRepresentation().entries();
  std::sort(entries.begin(), entries.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  if (entries.empty()) console.note("no settings");
  if (!console.isJson()) {
    console.print(listText(entries, console));
    return kExitDone;
  }
  Json list = Json::array();
  for (const auto& [key, value] : entries) {
    list.push_back({{"key", key}, {"type", typeOfValue(value)}, {"value", jsonOfValue(value)}});
  }
  console.print(jsonText(Json{{"defaults", std::move(list)}}));
  return kExitDone;
}

int migrate(Console& console) {
  const auto copy = [&](UserDefaults& /*defaults*/) -> Expected<void> {
    if (VantrelUserDefaults::hasMigratedDefault()) {
      console.note("the settings have been copied before");
      return {};
    }
    if (auto readable = settingsForReading(Suite::kStandard); !readable) {
      return tl::unexpected(readable.error());
    }
    VantrelUserDefaults::migrateUserDefaultsIfNeccessary();
    return {};
  };
  return changeSettings(console, copy);
}

void addType(const Command<Request>& command, const char* description) {
  addValueOption(command.parser, "--type", command.options.type, &typeFromArgument,
                 "bool|int|float|double|string|date|data", description);
}

}  // namespace

void fillDefaultsCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto read = addCommand(parser, session, "read",
                               "Print one value; dates in ISO 8601, data in base64", &readKey);
  const auto write = addCommand(parser, session, "write", "Set one value", &writeKey);
  const auto remove = addCommand(parser, session, "delete", "Remove one value", &deleteKey);
  const auto list =
      addCommand(parser, session, "list", "Print all keys, types and values", &listKeys);
  addCommand(parser, session, "migrate", "Copy this program's settings into the shared ones, once",
             &migrate);
  for (const auto& command : {read, write, remove}) {
    addValueOption(command.parser, "KEY", command.options.key, &keyFromArgument, "",
                   "Name of the setting");
  }
  addTextOption(write.parser, "VALUE", write.options.value, "",
                "The new value (data in base64); - reads standard input (raw data)");
  addType(read, "Convert the value to this type");
  addType(write, "Type of the value; default: string");
  for (const auto& command : {read, write, remove, list}) {
    const auto standard = [&suite = command.options.suite] { suite = Suite::kStandard; };
    command.parser.add_flag_callback("--standard", standard,
                                     "Use this program's settings, not the shared ones");
  }
}

}  // namespace vantrel::cli
