#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "cli/today/TodayList.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// JSON texts with a line break at the end: keys in a fixed order, absent values null, instants in
/// ISO 8601, nothing that depends on the locale but the texts of the widget.
std::string jsonText(const Planning& plan);
std::string jsonText(const TodayList& today);
/// The same on one line.
std::string jsonLine(const TodayList& today);
/// The plans as one such text, each printed before the next is made.
void printJson(const std::vector<std::shared_ptr<Planning>>& plans, const TextSink& print);

}  // namespace vantrel::cli
