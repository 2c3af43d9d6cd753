#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"
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

/// What it shows at this moment; an error, where the widget would tell of no plans, when there is
/// no store or it cannot be read.
Expected<TodayList> todayList(bool isExpanded);

}  // namespace vantrel::cli
