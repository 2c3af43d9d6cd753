#include "cli/plan/PlanTemplate.h"

#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "base/Iso8601.h"
#include "cli/Arguments.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "store/PlanLink.h"
#include "time/Formatters.h"

namespace vantrel::cli {

namespace {

std::string dated(const Planning& plan, const DateFormatter& formatter) {
  const auto date = plan.date();
  const std::string text = date ? formatter.stringFromDate(*date) : "";
  return text.empty() ? kUnknown : text;
}

std::string degrees(std::optional<double> value, const NumberFormatter& formatter) {
  return value && std::isfinite(*value) ? formatter.stringFromNumber(*value) : kUnknown;
}

/// Returns the character for an escape sequence; `nullopt` if `pair` is none.
std::optional<char> unescaped(std::string_view pair) {
  if (pair == "\\t") return '\t';
  if (pair == "\\n") return '\n';
  if (pair == "\\\\") return '\\';
  return std::nullopt;
}

}  // namespace

struct PlanTemplate::Formats {
  Formatters& shared = Formatters::sharedInstance();
  DateFormatter day = Formatters::dateFormatterWithMediumMonthAndNoYear();
  NumberFormatter number = Formatters::enUSPosixNumberFormatter();
};

const std::vector<PlanTemplate::Field>& PlanTemplate::fields() {
  static const std::vector<Field> all = {
      {"name", [](auto& plan, auto&) { return shown(plan.name()); }},
      {"notes", [](auto& plan, auto&) { return shown(plan.notes()); }},
      {"day", [](auto& plan, auto& formats) { return dated(plan, formats.day); }},
      {"date",
       [](auto& plan, auto& formats) { return dated(plan, formats.shared.shortDateFormatter()); }},
      {"time",
       [](auto& plan, auto& formats) { return dated(plan, formats.shared.shortTimeFormatter()); }},
      {"zone", [](auto& plan, auto&) { return shown(plan.timezone()); }},
      {"instant",
       [](auto& plan, auto&) {
         const double seconds = plan.date().value_or(Date(NAN)).timeIntervalSinceReferenceDate();
         const std::string text = iso8601String(Date(std::floor(seconds)));
         return text.empty() ? kUnknown : text;
       }},
      {"latitude",
       [](auto& plan, auto& formats) { return degrees(plan.latitude(), formats.number); }},
      {"longitude",
       [](auto& plan, auto& formats) { return degrees(plan.longitude(), formats.number); }},
      {"id",
       [](auto& plan, auto&) {
         const auto identifier = plan.uniqueIdentifier();
         return identifier ? printable(*identifier) : plan.objectID().URIRepresentation();
       }},
      {"link", [](auto& plan, auto&) { return deepLink(plan); }},
  };
  return all;
}

std::string PlanTemplate::fieldNames() {
  std::string names;
  for (const auto& field : fields()) names += (names.empty() ? "" : ", ") + std::string(field.name);
  return names;
}

PlanTemplate::Write PlanTemplate::fieldNamed(std::string_view name) {
  for (const auto& field : fields()) {
    if (field.name == name) return field.write;
  }
  return nullptr;
}

Expected<PlanTemplate> PlanTemplate::parsed(const std::string& option, const std::string& text) {
  if (const auto valid = textFromArgument(option, text); !valid) {
    return tl::unexpected(valid.error());
  }
  const auto fail = [&](const std::string& why) {
    return tl::unexpected(failure(kExitUsage, option, why));
  };
  PlanTemplate result;
  std::string literal;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const auto pair = std::string_view(text).substr(at, 2);
    if (const auto character = unescaped(pair)) {
      literal += *character;
      ++at;
    } else if (pair == "{{" || pair == "}}") {
      literal += c;
      ++at;
    } else if (c == '{') {
      const auto end = text.find('}', at);
      if (end == std::string::npos) return fail("expected } after {; a literal brace is {{");
      const std::string name = text.substr(at + 1, end - at - 1);
      const Write write = fieldNamed(name);
      if (!write) return fail("unknown field {" + name + "}; expected one of " + fieldNames());
      result.pieces_.push_back({std::exchange(literal, {}), write});
      at = end;
    } else if (c == '}') {
      return fail("expected { before }; a literal brace is }}");
    } else {
      literal += c;
    }
  }
  result.pieces_.push_back({literal + "\n"});
  result.formats_ = std::make_shared<Formats>();
  return result;
}

std::string PlanTemplate::line(const Planning& plan) const {
  const TimeZone zone = zoneOfPlan(plan);
  formats_->shared.setTimeZone(zone);
  formats_->day.setTimeZone(zone);
  std::string text;
  for (const auto& [literal, write] : pieces_) {
    text += literal;
    if (write) text += write(plan, *formats_);
  }
  return text;
}

}  // namespace vantrel::cli
