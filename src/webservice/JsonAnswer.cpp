#include "webservice/JsonAnswer.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace vantrel {

namespace {

using Json = nlohmann::json;

const Json& jsonOf(const std::shared_ptr<const void>& node) {
  return *static_cast<const Json*>(node.get());
}

tl::unexpected<Error> undecodable(const std::string& why) {
  return tl::unexpected(Error{"JSON", 0, "The answer is not JSON: " + why, {}});
}

/// Returns the library's message without its error number and the offending bytes.
std::string reasonOf(const Json::exception& error) {
  const std::string text = error.what();
  const auto start = text.find("] ");
  const auto end = text.find(';');
  return text.substr(start == std::string::npos ? 0 : start + 2,
                     end == std::string::npos ? end : end - start - 2);
}

}  // namespace

Expected<JsonAnswer> JsonAnswer::answerWithData(std::string_view data) {
  // Deep documents need many times their size in memory and overflow the stack of recursive code.
  const auto checkDepth = [](int depth, Json::parse_event_t /*event*/, Json& /*parsed*/) {
    if (depth > kMaxDepth) throw std::length_error("nested too deeply");
    return true;
  };
  try {
    auto document = std::make_shared<const Json>(Json::parse(data, checkDepth));
    if (!document->is_structured()) return undecodable("neither an object nor an array");
    return JsonAnswer(std::move(document));
  } catch (const Json::exception& error) {
    return undecodable(reasonOf(error));
  } catch (const std::length_error& error) {
    return undecodable(error.what());
  }
}

bool JsonAnswer::isObject() const {
  return jsonOf(node_).is_object();
}

bool JsonAnswer::contains(std::string_view key) const {
  return jsonOf(node_).contains(key);
}

JsonAnswer JsonAnswer::operator[](std::string_view key) const {
  static const Json null;
  const Json& json = jsonOf(node_);
  const auto found = json.is_object() ? json.find(key) : json.end();
  return JsonAnswer({node_, found == json.end() ? &null : &*found});
}

std::optional<JsonAnswer> JsonAnswer::first() const {
  const Json& json = jsonOf(node_);
  if (!json.is_array() || json.empty()) return std::nullopt;
  return JsonAnswer({node_, &json.front()});
}

std::optional<std::string> JsonAnswer::asString() const {
  const Json& json = jsonOf(node_);
  return json.is_string() ? std::optional(json.get<std::string>()) : std::nullopt;
}

std::optional<double> JsonAnswer::asNumber() const {
  const Json& json = jsonOf(node_);
  return json.is_number() ? std::optional(json.get<double>()) : std::nullopt;
}

int JsonAnswer::intValue() const {
  using Limits = std::numeric_limits<int>;
  const auto text = asString();
  const double value =
      text ? static_cast<double>(std::strtoll(text->c_str(), nullptr, 10)) : asNumber().value_or(0);
  if (std::isnan(value)) return 0;
  if (value <= Limits::min()) return Limits::min();
  return value >= Limits::max() ? Limits::max() : static_cast<int>(value);
}

}  // namespace vantrel
