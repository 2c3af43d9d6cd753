#include "cli/exchange/CsvWriter.h"

#include <cmath>
#include <string>

#include "cli/exchange/ExchangeText.h"

namespace vantrel::cli {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::string inQuotes(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"') result += '"';
    result += c;
  }
  return result + '"';
}

/// A text that somebody wrote.
std::string cell(const std::optional<std::string>& text) {
  if (!text || text->empty()) return {};
  const bool isFormula = std::string_view("=+-@\t\r\n").find(text->front()) != std::string::npos;
  return inQuotes((isFormula ? "'" : "") + fileText(*text));
}

std::string cell(const std::optional<double>& number) {
  return number && std::isfinite(*number) ? decimalText(*number) : std::string();
}

}  // namespace

void writeCsv(const Plans& plans, const TextSink& print) {
  print("uniqueIdentifier,name,notes,date,timezone,localDate,latitude,longitude,images");
  print(kLineEnd);
  for (const auto& plan : plans) {
    std::string line = cell(plan->uniqueIdentifier()) + ',' + cell(plan->name()) + ',' +
                       cell(plan->notes()) + ',' + instantText(*plan) + ',' +
                       cell(plan->timezone()) + ',' + localText(*plan) + ',' +
                       cell(plan->latitude()) + ',' + cell(plan->longitude()) + ',' +
                       std::to_string(plan->imageCount());
    print(line.append(kLineEnd));
  }
}

}  // namespace vantrel::cli
