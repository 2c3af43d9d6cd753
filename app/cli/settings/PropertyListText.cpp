#include "cli/settings/PropertyListText.h"

#include <nettle/base64.h>

#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

std::string base64(const Data& data) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(data.size()), '\0');
  ::base64_encode_raw(text.data(), data.size(), reinterpret_cast<const uint8_t*>(data.data()));
  return text;
}

/// Ignores white space.
std::optional<Data> dataFromBase64(const std::string& text) {
  Data data(BASE64_DECODE_LENGTH(text.size()));
  std::size_t length = data.size();
  base64_decode_ctx context{};
  ::base64_decode_init(&context);
  if (!::base64_decode_update(&context, &length, reinterpret_cast<uint8_t*>(data.data()),
                              text.size(), text.data()) ||
      !::base64_decode_final(&context)) {
    return std::nullopt;
  }
  data.resize(length);
  return data;
}

Expected<PropertyList> dataFromArgument(const std::string& option, const std::string& text) {
  if (const auto data = dataFromBase64(text)) return PropertyList::data(*data);
  return invalidArgument(option, text, "base64");
}

Expected<PropertyList> stringFromArgument(const std::string& option, const std::string& text) {
  if (text.find('\0') == std::string::npos) {
    return textFromArgument(option, text).map(&PropertyList::string);
  }
  return tl::unexpected(failure(kExitUsage, option, "expected text without NUL"));
}

}  // namespace

std::string typeOfValue(const PropertyList& value) {
  using Kind = PropertyList::Kind;
  constexpr std::pair<Kind, const char*> kNames[] = {
      {Kind::kBoolean, "bool"},  {Kind::kInteger, "int"}, {Kind::kReal, "double"},
      {Kind::kString, "string"}, {Kind::kDate, "date"},   {Kind::kData, "data"},
      {Kind::kUid, "uid"},       {Kind::kArray, "array"}, {Kind::kDictionary, "dictionary"}};
  for (const auto& [kind, name] : kNames) {
    if (value.kind() == kind) return name;
  }
  return "nothing";
}

Json jsonOfValue(const PropertyList& value) {
  if (const auto boolean = value.asBoolean()) return *boolean;
  if (const auto* large = std::get_if<std::uint64_t>(&value.value())) return *large;
  if (const auto integer = value.asInteger()) return *integer;
  if (const auto real = value.asReal()) return *real;
  if (const auto text = value.asString()) return *text;
  if (const auto date = value.asDate()) return jsonOfDate(*date);
  if (const auto data = value.asData()) return base64(*data);
  // As in XML property lists.
  if (const auto uid = value.asUid()) return Json{{"CF$UID", *uid}};
  if (value.kind() == PropertyList::Kind::kArray) {
    Json array = Json::array();
    for (const auto& item : value.items()) array.push_back(jsonOfValue(item));
    return array;
  }
  if (value.kind() == PropertyList::Kind::kDictionary) {
    Json dictionary = Json::object();
    for (const auto& [key, item] : value.entries()) dictionary[key] = jsonOfValue(item);
    return dictionary;
  }
  return nullptr;
}

std::string textOfValue(const PropertyList& value) {
  if (const auto text = value.asString()) return printable(*text);
  const Json json = jsonOfValue(value);
  if (json.is_string()) return json.get<std::string>();
  std::string line = jsonLine(json);
  line.pop_back();
  return line;
}

Expected<PropertyList> valueFromText(const std::string& type, const std::string& text) {
  const std::string option = "VALUE";
  if (type == "bool") return switchFromArgument(option, text).map(&PropertyList::boolean);
  if (type == "int") return integerFromArgument(option, text).map(&PropertyList::integer);
  if (type == "float")
    return floatFromArgument(option, text).map(&PropertyList::realOfSinglePrecision);
  if (type == "double") return realFromArgument(option, text).map(&PropertyList::real);
  if (type == "string") return stringFromArgument(option, text);
  if (type == "data") return dataFromArgument(option, text);
  return dateFromArgument(option, text).map(&PropertyList::date);
}

}  // namespace vantrel::cli
