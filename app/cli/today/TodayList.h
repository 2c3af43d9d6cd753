#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// The visible rows of the widget, or its message.
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

/// Returns what the widget shows now. Errors: there is no store, or it cannot be read (the widget
/// shows its message for no plans then).
Expected<TodayList> todayList(bool isExpanded);

}  // namespace vantrel::cli
