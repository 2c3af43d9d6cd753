#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// What the widget shows: its visible rows, or its message.
struct TodayRow {
  std::shared_ptr<Planning> plan;
  std::string title;
  std::string dateText;
};
struct TodayList {
  std::vector<TodayRow> rows;
  std::optional<std::string> message;
  bool isExpanded = false;
};

/// "vantrel://plan?id=..." for the plan.
std::string deepLink(const Planning& plan);

/// JSON texts with a line break at the end: keys in a fixed order, absent values null, instants in
/// ISO 8601, nothing that depends on the locale but the texts of the widget.
std::string jsonText(const Planning& plan);
std::string jsonText(const TodayList& today);
/// The plans as one such text, each printed before the next is made.
void printJson(const std::vector<std::shared_ptr<Planning>>& plans, Console& console);

}  // namespace vantrel::cli
