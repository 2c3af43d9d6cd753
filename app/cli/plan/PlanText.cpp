#include "cli/plan/PlanText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

#include "base/Iso8601.h"
#include "cli/plan/PlanSelection.h"
#include "common/DayWords.h"
#include "common/TerminalText.h"
#include "store/PlanLink.h"

namespace vantrel::cli {

namespace {

/// Longer values are not cut; they shift the rest of their own line.
constexpr std::size_t kWidestColumn = 44;

/// Cached, since each row needs it.
const TimeZone& deviceZone() {
  static const TimeZone zone = TimeZone::defaultTimeZone();
  return zone;
}

struct WallTexts {
  std::string day;
  std::string minute;  ///< "23:40"
  std::string second;  ///< ":07"
};

/// `nullopt` for years that are not written with four digits.
std::optional<WallTexts> wallTexts(Date date, const TimeZone& zone) {
  const std::string text = iso8601String(date, zone.secondsFromGMTForDate(date));
  // Years before 0 have a sign.
  const auto dayEnd = text.find('T');
  if (dayEnd == std::string::npos) return std::nullopt;
  return WallTexts{text.substr(0, dayEnd), text.substr(dayEnd + 1, 5), text.substr(dayEnd + 6, 3)};
}

std::string wallMinuteText(Date date, const TimeZone& zone) {
  const auto wall = wallTexts(date, zone);
  return wall ? wall->day + " " + wall->minute : kUnknown;
}

struct TableRow {
  std::string when;
  std::string day;  ///< In words; empty unless on a terminal.
  std::string name;
  std::string zone;
  std::string here;
  std::string identifier;
};

TableRow tableRow(const Planning& plan) {
  TableRow row{kUnknown, "", shown(plan.name()), shown(plan.timezone()), "", ""};
  if (const auto date = plan.date()) {
    const TimeZone zone = zoneOfPlan(plan);
    row.when = wallMinuteText(*date, zone);
    row.here = hereText(*date, zone).value_or("");
    if (Console::isTerminal()) row.day = dayWords(plan).value_or("");
  }
  const auto identifier = plan.uniqueIdentifier();
  row.identifier = identifier ? shortIdentifier(*identifier) : plan.objectID().URIRepresentation();
  return row;
}

constexpr std::array kColumns = {&TableRow::when, &TableRow::day, &TableRow::name, &TableRow::zone,
                                 &TableRow::here};

}  // namespace

TimeZone zoneOfPlan(const Planning& plan) {
  if (const auto name = plan.timezone()) {
    if (auto zone = TimeZone::timeZoneWithName(*name)) return *zone;
  }
  return deviceZone();
}

std::string placeText(std::optional<double> latitude, std::optional<double> longitude) {
  const auto degrees = [](std::optional<double> value) -> std::string {
    if (!value || !std::isfinite(*value)) return kUnknown;
    std::array<char, 512> text{};
    std::snprintf(text.data(), text.size(), "%.5f", *value);
    return text.data();
  };
  return degrees(latitude) + ", " + degrees(longitude);
}

std::string wallText(Date date, const TimeZone& zone) {
  const auto wall = wallTexts(date, zone);
  if (!wall) return kUnknown;
  return wall->day + " " + wall->minute + (wall->second == ":00" ? "" : wall->second);
}

std::optional<std::string> hereText(Date date, const TimeZone& zone) {
  const TimeZone& here = deviceZone();
  if (here.secondsFromGMTForDate(date) == zone.secondsFromGMTForDate(date)) return std::nullopt;
  const auto there = wallTexts(date, zone);
  const auto wall = wallTexts(date, here);
  if (!there || !wall) return std::nullopt;
  const std::string text = wallText(date, here);
  return (wall->day == there->day ? text.substr(wall->day.size() + 1) : text) + " here";
}

std::string whenText(const std::optional<Date>& date, const TimeZone& zone) {
  if (!date) return kUnknown;
  const auto here = hereText(*date, zone);
  return wallText(*date, zone) + (here ? " (" + *here + ")" : "");
}

std::string planDetails(const Planning& plan, const Console& console) {
  std::string text = console.bold(shown(plan.name())) + "\n";
  const auto line = [&](const char* label, const std::string& value) {
    text += console.labelled(label, value);
  };
  line("Date", whenText(plan.date(), zoneOfPlan(plan)));
  line("Zone", shown(plan.timezone()));
  line("Place", placeText(plan.latitude(), plan.longitude()));
  if (const auto notes = plan.notes(); notes && !notes->empty()) {
    line("Notes", printableLines(*notes, std::string(2 + Console::kLabelWidth, ' ')));
  }
  line("Pictures", std::to_string(plan.imageCount()));
  line("Identifier", shown(plan.uniqueIdentifier()));
  line("URI", plan.objectID().URIRepresentation());
  line("Link", deepLink(plan));
  return text;
}

std::size_t printTable(PlanSource& plans, Console& console) {
  std::size_t count = 0;
  std::array<std::size_t, kColumns.size()> widths{};
  plans.forEach([&](const Planning& plan) {
    ++count;
    const TableRow row = tableRow(plan);
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::min(std::max(widths[i], cellWidth(row.*kColumns[i])), kWidestColumn);
    }
  });
  plans.forEach([&](const Planning& plan) {
    TableRow row = tableRow(plan);
    for (std::size_t i = 0; i < widths.size(); ++i) {
      row.*kColumns[i] = paddedToCells(std::move(row.*kColumns[i]), widths[i]);
    }
    std::string line = row.when + "  ";
    if (!row.day.empty()) line.append(row.day).append("  ");
    line.append(console.bold(row.name)).append("  ").append(row.zone).append("  ");
    if (!row.here.empty()) line.append(row.here).append("  ");
    console.print(line.append(console.dim(row.identifier)).append("\n"));
  });
  return count;
}

std::string plainLine(const Planning& plan) {
  const auto number = [](std::optional<double> value) -> std::string {
    if (!value || !std::isfinite(*value)) return "";
    std::array<char, 64> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), *value).ptr};
  };
  const auto date = plan.date();
  const int offset = date ? zoneOfPlan(plan).secondsFromGMTForDate(*date) : 0;
  const auto identifier = plan.uniqueIdentifier();
  std::string line = identifier ? printable(*identifier) : plan.objectID().URIRepresentation();
  for (const std::string& column :
       {date ? iso8601String(*date) : "", date ? iso8601String(*date, offset) : "",
        printable(plan.timezone().value_or("")), number(plan.latitude()), number(plan.longitude()),
        printable(plan.name().value_or(""))}) {
    line += "\t" + column;
  }
  return line + "\n";
}

std::string candidateText(const Planning& plan) {
  const TableRow row = tableRow(plan);
  return shown(plan.uniqueIdentifier()) + "  " + row.when + "  " + row.name;
}

}  // namespace vantrel::cli
