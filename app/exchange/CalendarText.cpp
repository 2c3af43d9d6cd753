#include "exchange/CalendarText.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "cli/ExitCode.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kDeepest = 16;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;
/// Of all zones together; each costs a walk through its years.
constexpr std::size_t kMostObservances = 1000;
constexpr std::array<std::string_view, 18> kProperties = {
    "UID",          "SUMMARY",    "DESCRIPTION",    "LOCATION",      "DTSTART", "DUE",
    "RRULE",        "RDATE",      "EXDATE",         "RECURRENCE-ID", "STATUS",  "TZID",
    "TZOFFSETFROM", "TZOFFSETTO", "X-LIC-LOCATION", "TZNAME",        "VERSION", "GEO"};

std::string upperCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return result;
}

tl::unexpected<Error> refused(const std::string& what, const std::string& why) {
  return tl::make_unexpected(failure(kExitBadData, what, why));
}

/// Follows which component a line stands in, and hands what matters to the library.
class CalendarLines {
 public:
  CalendarLines() : parser_(icalparser_new(), &icalparser_free) {}

  Expected<void> add(std::string line) {
    const std::size_t nameEnd = std::min(line.find_first_of(";:"), line.size());
    const std::string name = upperCase(std::string_view(line).substr(0, nameEnd));
    if (name == "BEGIN" || name == "END") {
      const std::string component =
          upperCase(std::string_view(line).substr(std::min(nameEnd + 1, line.size())));
      return name == "BEGIN" ? begin(component) : end(component);
    }
    if (path_.empty()) return line.empty() ? Expected<void>() : refused("calendar", kNoCalendar);
    const bool isKnown =
        std::find(kProperties.begin(), kProperties.end(), name) != kProperties.end();
    if (isDropped() || !isKnown) return {};
    if (line.size() > kLongestLine) return refused(name, "longer than 1 MiB");
    if (name == "GEO")
      line = std::string(kPlaceProperty) + line.substr(std::min(line.find(':'), line.size()));
    pass(line);
    return {};
  }

  Expected<std::vector<CalendarComponent>> finish() {
    if (!path_.empty()) return refused(path_.back(), "is not closed; the file ends too early");
    if (calendars_.empty()) return refused("calendar", kNoCalendar);
    return std::move(calendars_);
  }

 private:
  static constexpr const char* kNoCalendar = "is none; wanted is BEGIN:VCALENDAR";

  bool isDropped() const { return droppedAt_ != 0; }

  /// Whether a component of that name may make a plan, or a zone for one, where it stands.
  bool isWanted(const std::string& component) const {
    if (path_.size() == 1) {
      return component == "VEVENT" || component == "VTODO" || component == "VTIMEZONE";
    }
    return path_.size() == 2 && path_.back() == "VTIMEZONE" &&
           (component == "STANDARD" || component == "DAYLIGHT");
  }

  Expected<void> begin(const std::string& component) {
    if (path_.size() >= kDeepest) return refused(component, "nested too deeply");
    if (path_.empty() && component != "VCALENDAR") return refused("calendar", kNoCalendar);
    if (!path_.empty() && !isDropped() && !isWanted(component)) droppedAt_ = path_.size();
    path_.push_back(component);
    if (isDropped()) return {};
    if (component == "STANDARD" || component == "DAYLIGHT") {
      if (++observances_ > kMostObservances) return refused("VTIMEZONE", "too many rules");
    } else if (component == "VEVENT" || component == "VTODO") {
      if (auto checked = checkCount(++entries_); !checked) return checked;
    }
    pass("BEGIN:" + component);
    return {};
  }

  Expected<void> end(const std::string& component) {
    if (path_.empty() || path_.back() != component) {
      return refused("END:" + component.substr(0, 40),
                     path_.empty() ? "closes nothing" : "stands within " + path_.back());
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
    if (auto* calendar = icalparser_add_line(parser_.get(), line.data())) {
      calendars_.emplace_back(calendar);
    }
  }

  std::unique_ptr<icalparser, decltype(&icalparser_free)> parser_;
  std::vector<std::string> path_;
  std::size_t droppedAt_ = 0;  ///< How deep stands what is passed over; 0 for none.
  std::size_t entries_ = 0;
  std::size_t observances_ = 0;
  std::vector<CalendarComponent> calendars_;
};

}  // namespace

Expected<std::vector<CalendarComponent>> calendarsOfText(std::string_view text,
                                                         const ProgressReport& progress) {
  icalerror_set_errors_are_fatal(0);
  CalendarLines lines;
  std::string line;
  // Folded lines are joined here: the library takes the square of a long line's length for it.
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t lineEnd = std::min(text.find('\n', at), text.size());
    std::string_view piece = text.substr(at, lineEnd - at);
    at = lineEnd + 1;
    if (piece.ends_with('\r')) piece.remove_suffix(1);
    const bool isFolded = piece.starts_with(' ') || piece.starts_with('\t');
    if (isFolded) {
      piece.remove_prefix(1);
    } else if (const auto added = lines.add(std::exchange(line, {})); !added) {
      return tl::make_unexpected(added.error());
    }
    // As much as tells that it is too long.
    line += piece.substr(0, kLongestLine + 1 - std::min(line.size(), kLongestLine));
    progress(at, text.size());
  }
  if (const auto added = lines.add(std::move(line)); !added) {
    return tl::make_unexpected(added.error());
  }
  return lines.finish();
}

}  // namespace vantrel::cli
