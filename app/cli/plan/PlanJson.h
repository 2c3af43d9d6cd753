#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"
#include "cli/today/TodayList.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// JSON with a line break at the end: keys in a fixed order, null for absent values, ISO 8601
/// dates. Only the widget's texts depend on the locale.
std::string jsonText(const Planning& plan);
std::string jsonText(const TodayList& today);
/// The same on one line.
std::string jsonLine(const TodayList& today);
/// Prints all plans as one JSON text, plan by plan.
void printJson(PlanSource& plans, const TextSink& print);

}  // namespace vantrel::cli
