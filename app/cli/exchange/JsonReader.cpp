#include "cli/exchange/JsonReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/Iso8601.h"
#include "cli/Arguments.h"
#include "common/ExitCode.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

namespace {

using nlohmann::json;

constexpr int kMaxDepth = 4;
constexpr std::size_t kMostValues = kMostPlansRead * 20;
constexpr std::array kDerivedKeys = {"uri",           "link",    "localDate", "images", "daysUntil",
                                     "daysUntilHere", "started", "row",       "title",  "dateText"};

/// Stops at a syntax error, or beyond the limits of depth and size. (The library's callback for its
/// parser needs quadratic time for a long list.)
class ShapeCheck : public nlohmann::json_sax<json> {
 public:
  explicit ShapeCheck(std::string_view text) : text_(text) {}
  const std::optional<Error>& failure() const { return failure_; }

  bool null() override { return count(); }
  bool boolean(bool /*value*/) override { return count(); }
  bool number_integer(std::int64_t /*value*/) override { return count(); }
  bool number_unsigned(std::uint64_t /*value*/) override { return count(); }
  bool number_float(double /*value*/, const std::string& /*text*/) override { return count(); }
  bool string(std::string& /*value*/) override { return count(); }
  bool binary(json::binary_t& /*value*/) override { return count(); }
  bool key(std::string& /*value*/) override { return true; }
  bool start_object(std::size_t /*size*/) override { return enter(); }
  bool end_object() override { return leave(); }
  bool start_array(std::size_t /*size*/) override { return enter(); }
  bool end_array() override { return leave(); }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const nlohmann::detail::exception& fault) override {
    constexpr int kNumberOutOfRange = 406;
    const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(position, text_.size()));
    const auto line = "line " + std::to_string(std::count(text_.begin(), end, '\n') + 1);
    return fail(line, fault.id == kNumberOutOfRange ? "a number is out of range" : "invalid JSON");
  }

 private:
  bool fail(const std::string& where, const char* why) {
    failure_ = vantrel::failure(kExitBadData, where, why);
    return false;
  }
  bool count() { return ++values_ <= kMostValues || fail("JSON", "too many values"); }
  bool enter() { return ++depth_ <= kMaxDepth ? count() : fail("JSON", "nested too deeply"); }
  bool leave() {
    --depth_;
    return true;
  }

  std::string_view text_;
  std::size_t values_ = 0;
  int depth_ = 0;
  std::optional<Error> failure_;
};

Expected<json> parsed(std::string_view text) {
  ShapeCheck check(text);
  if (!json::sax_parse(text, &check)) {
    return tl::unexpected(
        check.failure().value_or(failure(kExitBadData, "JSON", "cannot be read")));
  }
  return json::parse(text);
}

const char* kindOf(const json& value) {
  return value.is_null() ? "null" : value.type_name();
}

std::optional<std::string> unknownZone(const PlanDraft& draft) {
  const auto zone = draft.values.find("timezone");
  const auto* name = zone == draft.values.end() ? nullptr : std::get_if<std::string>(&zone->second);
  return name && !TimeZone::timeZoneWithName(*name) ? std::optional(*name) : std::nullopt;
}

bool isOutsideEarth(const PlanDraft& draft) {
  const auto isBeyond = [&](const char* key, double limit) {
    const auto value = draft.values.find(key);
    const auto* degrees =
        value == draft.values.end() ? nullptr : std::get_if<double>(&value->second);
    return degrees && std::fabs(*degrees) > limit;
  };
  return isBeyond("latitude", 90) || isBeyond("longitude", 180);
}

/// Stores may contain such values, but in a file they are probably mistakes.
std::vector<std::string> notesOf(const std::vector<PlanDraft>& drafts) {
  std::vector<std::string> notes;
  const auto count = [&](auto matches) {
    return static_cast<std::size_t>(std::count_if(drafts.begin(), drafts.end(), matches));
  };
  addNote(notes, count([](const auto& draft) { return unknownZone(draft).has_value(); }),
          "1 plan has an unknown time zone", " plans have unknown time zones");
  addNote(notes, count(&isOutsideEarth), "1 plan has coordinates out of range",
          " plans have coordinates out of range");
  return notes;
}

/// Reads one plan.
class PlanReader {
 public:
  PlanReader(const json& object, const std::string& where) : object_(object) {
    draft_.where = where;
  }

  Expected<PlanDraft> read() {
    if (!object_.is_object()) {
      return invalidData(draft_.where, std::string("expected an object, got ") + kindOf(object_));
    }
    for (const auto& [key, value] : object_.items()) {
      const auto done = readAttribute(key, value);
      if (!done) return tl::unexpected(done.error());
    }
    if (const auto zone = unknownZone(draft_); zone && draft_.wallSeconds) {
      return invalidData(draft_.where + ".timezone",
                         "expected a time zone such as Europe/Madrid, got \"" + *zone + "\"");
    }
    return std::move(draft_);
  }

 private:
  Expected<void> readAttribute(const std::string& key, const json& value) {
    const std::string where = draft_.where + "." + key;
    if (key == "name" || key == "notes" || key == "timezone") return readText(key, value, where);
    if (key == "latitude" || key == "longitude") return readDegrees(key, value, where);
    if (key == "uniqueIdentifier") return readIdentifier(value, where);
    if (key == "date") return readDate(value, where);
    if (std::find(kDerivedKeys.begin(), kDerivedKeys.end(), key) != kDerivedKeys.end()) {
      return {};
    }
    return invalidData(where, "unknown key; see vantrel plan list --json");
  }

  /// `nullopt` for null.
  static Expected<std::optional<std::string>> textOf(const json& value, const std::string& where) {
    if (value.is_null()) return std::nullopt;
    if (!value.is_string()) {
      return invalidData(where, std::string("expected a string or null, got ") + kindOf(value));
    }
    return value.get<std::string>();
  }

  Expected<void> readText(const std::string& key, const json& value, const std::string& where) {
    return textOf(value, where).map([&](auto text) {
      draft_.values[key] = text ? Value(std::move(*text)) : Value();
    });
  }

  Expected<void> readIdentifier(const json& value, const std::string& where) {
    return textOf(value, where).map([&](auto text) {
      // null: a new plan gets no identifier.
      if (!text) draft_.values["uniqueIdentifier"] = Value();
      draft_.identifier = std::move(text);
    });
  }

  Expected<void> readDate(const json& value, const std::string& where) {
    return textOf(value, where).and_then([&](auto text) -> Expected<void> {
      const auto instant = text ? dateFromIso8601String(*text) : std::nullopt;
      const auto wall = text ? wallTimeFromIso8601String(*text) : std::nullopt;
      if (wall) {
        draft_.wallSeconds = secondsOfWallTime(*wall);
      } else if (instant || !text) {
        draft_.values["date"] = instant ? Value(*instant) : Value();
      } else {
        return invalidData(where,
                           "expected a date such as 2026-07-15T21:40:00Z, got \"" + *text + "\"");
      }
      return {};
    });
  }

  Expected<void> readDegrees(const std::string& key, const json& value, const std::string& where) {
    if (!value.is_null() && !value.is_number()) {
      return invalidData(where, std::string("expected a number or null, got ") + kindOf(value));
    }
    draft_.values[key] = value.is_null() ? Value() : Value(value.get<double>());
    return {};
  }

  const json& object_;
  PlanDraft draft_;
};

}  // namespace

Expected<PlanDrafts> draftsFromJson(std::string_view text) {
  auto content = parsed(text);
  if (!content) return tl::unexpected(content.error());
  const bool isOnePlan = content->is_object() && content->contains("uniqueIdentifier");
  if (isOnePlan) *content = json::array({std::move(*content)});
  const json* list = &*content;
  if (list->is_object()) {
    const auto plans = list->find("plans");
    if (plans == list->end()) {
      return invalidData("JSON", "expected an array, a plan, or an object with \"plans\"");
    }
    list = &*plans;
  }
  if (!list->is_array()) {
    return invalidData("plans", std::string("expected an array, got ") + kindOf(*list));
  }
  if (const auto checked = checkCount(list->size()); !checked) {
    return tl::unexpected(checked.error());
  }
  PlanDrafts drafts;
  drafts.plans.reserve(list->size());
  for (std::size_t i = 0; i < list->size(); ++i) {
    auto draft = PlanReader((*list)[i], "plans[" + std::to_string(i) + "]").read();
    if (!draft) return tl::unexpected(draft.error());
    drafts.plans.push_back(std::move(*draft));
  }
  drafts.notes = notesOf(drafts.plans);
  return drafts;
}

}  // namespace vantrel::cli
