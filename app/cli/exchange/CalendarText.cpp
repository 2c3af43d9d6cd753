#include "cli/exchange/CalendarText.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/Ascii.h"
#include "platform/text/Utf8.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kMaxNestedComponents = 16;
/// The level of STANDARD and DAYLIGHT.
constexpr std::size_t kDepthOfObservances = 3;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;
/// In lines of all zones: libical needs quadratic time for invalid ones. A rule counts as several
/// lines, since libical expands its years.
constexpr std::size_t kMostZoneWork = 20000;
constexpr std::size_t kWorkOfRule = 20;
constexpr std::array<std::string_view, 16> kProperties = {
    "UID",          "SUMMARY",    "DESCRIPTION",    "LOCATION",      "GEO",    "DTSTART",
    "DUE",          "RRULE",      "RDATE",          "RECURRENCE-ID", "STATUS", "TZID",
    "TZOFFSETFROM", "TZOFFSETTO", "X-LIC-LOCATION", kValuesProperty};

struct PropertyLine {
  std::string head;  ///< The name with its parameters.
  std::string_view value;
};

/// Drops all parameters but the first TZID and VALUE: libical needs quadratic time for them.
PropertyLine propertyOfLine(std::string_view line, std::size_t nameEnd) {
  PropertyLine property{std::string(line.substr(0, nameEnd)), {}};
  bool hasZone = false;
  bool hasKind = false;
  std::size_t at = nameEnd;
  while (at < line.size() && line[at] == ';') {
    std::size_t end = at + 1;
    for (bool isQuoted = false; end < line.size(); ++end) {
      if (line[end] == '"') isQuoted = !isQuoted;
      if (!isQuoted && (line[end] == ';' || line[end] == ':')) break;
    }
    const std::string_view parameter = line.substr(at, end - at);
    const std::string name = asciiUpper(parameter.substr(0, parameter.find('=')));
    const bool isKept = (name == ";TZID" && !std::exchange(hasZone, true)) ||
                        (name == ";VALUE" && !std::exchange(hasKind, true));
    if (isKept) property.head += parameter;
    at = end;
  }
  property.value = line.substr(std::min(at + 1, line.size()));
  return property;
}

std::size_t workOf(std::string_view name, std::string_view line) {
  if (name == "RRULE") return kWorkOfRule;
  return 1 + static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
}

/// Tracks the nesting of components and passes the lines that plans use to libical.
class CalendarLines {
 public:
  CalendarLines() : parser_(icalparser_new(), &icalparser_free) {}

  Expected<void> add(const std::string& line) {
    const std::size_t nameEnd = std::min(line.find_first_of(";:"), line.size());
    const std::string name = asciiUpper(std::string_view(line).substr(0, nameEnd));
    if (name == "BEGIN" || name == "END") {
      const std::string component =
          asciiUpper(std::string_view(line).substr(std::min(nameEnd + 1, line.size())));
      return name == "BEGIN" ? begin(component) : end(component);
    }
    if (path_.empty())
      return line.empty() ? Expected<void>() : invalidData("calendar", kNoCalendar);
    const auto known = std::find(kProperties.begin(), kProperties.end(), name);
    if (path_.size() == 1 || isDropped() || known == kProperties.end()) return {};
    if (line.size() > kLongestLine) return invalidData(name, "longer than 1 MiB");
    const PropertyLine property = propertyOfLine(line, nameEnd);
    // libical rejects empty texts.
    if (property.value.empty()) return {};
    // Checked after unfolding, since a fold may divide a character.
    if (line.find('\0') != std::string::npos || !isUtf8(line)) {
      return invalidData(name, "expected UTF-8 text");
    }
    std::size_t valueSize = property.value.size();
    if (path_.size() == kDepthOfObservances) {
      zoneWork_ += workOf(name, line);
      if (zoneWork_ > kMostZoneWork) return invalidData("VTIMEZONE", "too many rules");
    } else {
      // Keeps the first property of each name, and the first date of RDATE.
      auto& isRepeated = seen_[static_cast<std::size_t>(known - kProperties.begin())];
      if (std::exchange(isRepeated, true)) return {};
      if (name == "RDATE") valueSize = property.value.find(',');
    }
    pass((name == "GEO" ? std::string(kPlaceProperty) : property.head) + ":" +
         std::string(property.value.substr(0, valueSize)));
    return {};
  }

  Expected<std::vector<CalendarText>> finish() {
    if (!path_.empty()) return invalidData(path_.back(), "no END before the end of the file");
    if (calendars_.empty()) return invalidData("calendar", kNoCalendar);
    return std::move(calendars_);
  }

 private:
  static constexpr const char* kNoCalendar = "expected BEGIN:VCALENDAR";

  bool isDropped() const { return droppedAt_ != 0; }

  /// Whether plans use components of that name at the current level.
  bool isUsed(const std::string& component) const {
    if (path_.size() == 1) {
      return component == "VEVENT" || component == "VTODO" || component == "VTIMEZONE";
    }
    return path_.size() + 1 == kDepthOfObservances && path_.back() == "VTIMEZONE" &&
           (component == "STANDARD" || component == "DAYLIGHT");
  }

  Expected<void> begin(const std::string& component) {
    if (path_.size() >= kMaxNestedComponents) return invalidData(component, "nested too deeply");
    if (path_.empty() && component != "VCALENDAR") return invalidData("calendar", kNoCalendar);
    if (!path_.empty() && !isDropped() && !isUsed(component)) droppedAt_ = path_.size();
    path_.push_back(component);
    if (isDropped()) return {};
    if (path_.size() < kDepthOfObservances) seen_ = {};
    isEntry_ = component == "VEVENT" || component == "VTODO";
    if (isEntry_) {
      if (auto checked = checkCount(++entryCount_); !checked) return checked;
      entries_.emplace_back();
    }
    pass("BEGIN:" + component);
    return {};
  }

  Expected<void> end(const std::string& component) {
    if (path_.empty() || path_.back() != component) {
      return invalidData("END:" + std::string(beginning(component, 40)),
                         path_.empty() ? "no component is open" : "expected END:" + path_.back());
    }
    path_.pop_back();
    if (isDropped()) {
      if (path_.size() == droppedAt_) droppedAt_ = 0;
    } else {
      pass("END:" + component);
    }
    return {};
  }

  void pass(std::string line) {
    if (isEntry_) {
      entries_.back() += line + '\n';
      isEntry_ = path_.size() > 1;
      return;
    }
    ensureMemory(memoryForText(line.size()));
    if (auto* zones = icalparser_add_line(parser_.get(), line.data())) {
      calendars_.push_back({CalendarComponent(zones), std::exchange(entries_, {})});
    }
  }

  std::unique_ptr<icalparser, decltype(&icalparser_free)> parser_;
  std::vector<std::string> path_;
  std::size_t droppedAt_ = 0;  ///< The level of the component that is dropped; 0 for none.
  bool isEntry_ = false;       ///< Whether the current component is an event or a to-do.
  std::size_t entryCount_ = 0;
  std::vector<std::string> entries_;             ///< Of the current calendar.
  std::array<bool, kProperties.size()> seen_{};  ///< By property, in the current entry.
  std::size_t zoneWork_ = 0;
  std::vector<CalendarText> calendars_;
};

}  // namespace

CalendarComponent componentOfText(const std::string& lines) {
  const std::unique_ptr<icalparser, decltype(&icalparser_free)> parser(icalparser_new(),
                                                                       &icalparser_free);
  ensureMemory(memoryForText(lines.size()));
  CalendarComponent component;
  for (std::size_t at = 0; at < lines.size() && !component;) {
    const std::size_t end = lines.find('\n', at);
    std::string line = lines.substr(at, end - at);
    component.reset(icalparser_add_line(parser.get(), line.data()));
    at = end + 1;
  }
  return component;
}

void ensureMemory(std::size_t bytes) {
  ::operator delete(::operator new(bytes));
}

std::size_t memoryForText(std::size_t size) {
  constexpr std::size_t kCopies = 8;
  constexpr std::size_t kSmallest = std::size_t{1} << 16;
  return kSmallest + kCopies * size;
}

Expected<std::vector<CalendarText>> calendarsOfText(std::string_view text,
                                                    const ProgressReport& progress) {
  icalerror_set_errors_are_fatal(0);
  CalendarLines lines;
  std::string line;
  // Unfolds lines, for which libical needs quadratic time.
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t lineEnd = std::min(text.find('\n', at), text.size());
    std::string_view piece = text.substr(at, lineEnd - at);
    at = lineEnd + 1;
    if (piece.ends_with('\r')) piece.remove_suffix(1);
    const bool isFolded = piece.starts_with(' ') || piece.starts_with('\t');
    if (isFolded) {
      piece.remove_prefix(1);
    } else if (const auto added = lines.add(std::exchange(line, {})); !added) {
      return tl::unexpected(added.error());
    }
    // Keeps one byte more than allowed, so that `add` rejects the line.
    line += piece.substr(0, kLongestLine + 1 - std::min(line.size(), kLongestLine));
    progress(at, text.size());
  }
  if (const auto added = lines.add(line); !added) {
    return tl::unexpected(added.error());
  }
  return lines.finish();
}

}  // namespace vantrel::cli
