#include "cli/exchange/PlanWriters.h"

#include <cmath>
#include <optional>
#include <pugixml.hpp>
#include <string>

#include "cli/exchange/ExchangeText.h"
#include "cli/plan/PlanText.h"
#include "common/TerminalText.h"

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

std::string cell(const std::optional<std::string>& text) {
  if (!text || text->empty()) return {};
  const bool isFormula = std::string_view("=+-@\t\r\n").find(text->front()) != std::string::npos;
  return inQuotes((isFormula ? "'" : "") + fileText(*text));
}

std::string cell(const std::optional<double>& number) {
  return number && std::isfinite(*number) ? decimalText(*number) : std::string();
}

class SinkWriter : public pugi::xml_writer {
 public:
  explicit SinkWriter(const TextSink& print) : print_(print) {}
  void write(const void* data, std::size_t size) override {
    print_({static_cast<const char*>(data), size});
  }

 private:
  const TextSink& print_;
};

/// Returns the root element of a new document.
pugi::xml_node root(pugi::xml_document& document, const char* name, const char* xmlNamespace) {
  auto declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  auto node = document.append_child(name);
  node.append_attribute("xmlns") = xmlNamespace;
  return node;
}

/// Appends an element unless `text` is empty or `nullopt`.
void appendText(pugi::xml_node parent, const char* name, const std::optional<std::string>& text) {
  if (text && !text->empty()) parent.append_child(name).text().set(fileText(*text).c_str());
}

void appendData(pugi::xml_node parent, const char* name, const std::optional<std::string>& text) {
  if (!text || text->empty()) return;
  auto data = parent.append_child("Data");
  data.append_attribute("name") = name;
  appendText(data, "value", text);
}

/// Prints an element and its children one by one: the document of a million plans would need
/// gigabytes.
class ElementPrinter {
 public:
  /// Prints `document` as far as the start of its innermost open element, `parent`.
  ElementPrinter(const pugi::xml_document& document, const TextSink& sink) : sink_(sink) {
    std::string text;
    const TextSink append = [&](std::string_view piece) { text += piece; };
    SinkWriter writer(append);
    document.save(writer, "  ", pugi::format_indent, pugi::encoding_utf8);
    const auto gap = text.find(kPlaceholder);
    end_ = text.substr(text.find('\n', gap) + 1);
    sink_(text.substr(0, text.rfind('\n', gap) + 1));
  }
  ~ElementPrinter() { sink_(end_); }
  ElementPrinter(const ElementPrinter&) = delete;
  ElementPrinter& operator=(const ElementPrinter&) = delete;

  void print(const pugi::xml_node& element, unsigned depth) {
    SinkWriter writer(sink_);
    element.print(writer, "  ", pugi::format_indent, pugi::encoding_utf8, depth);
  }

  /// The element of `document` that the printed ones replace.
  static constexpr const char* kPlaceholder = "vantrel-plans";

 private:
  const TextSink& sink_;
  std::string end_;
};

}  // namespace

void writeCsv(PlanSource& plans, const TextSink& print) {
  print("uniqueIdentifier,name,notes,date,timezone,localDate,latitude,longitude,images");
  print(kLineEnd);
  plans.forEach([&](const Planning& plan) {
    std::string line = cell(plan.uniqueIdentifier()) + ',' + cell(plan.name()) + ',' +
                       cell(plan.notes()) + ',' + instantText(plan) + ',' + cell(plan.timezone()) +
                       ',' + localText(plan) + ',' + cell(plan.latitude()) + ',' +
                       cell(plan.longitude()) + ',' + std::to_string(plan.imageCount());
    print(line.append(kLineEnd));
  });
}

std::size_t writeGpx(PlanSource& plans, const TextSink& sink) {
  pugi::xml_document document;
  auto gpx = root(document, "gpx", "http://www.topografix.com/GPX/1/1");
  gpx.append_attribute("version") = "1.1";
  gpx.append_attribute("creator") = "Vantrel Today";
  gpx.append_child(ElementPrinter::kPlaceholder);
  ElementPrinter printer(document, sink);
  std::size_t leftOut = 0;
  plans.forEach([&](const Planning& plan) {
    const auto place = placeOfPlan(plan);
    if (!place) {
      ++leftOut;
      return;
    }
    pugi::xml_document fragment;
    auto waypoint = fragment.append_child("wpt");
    waypoint.append_attribute("lat") = decimalText(place->latitude).c_str();
    // GPX longitudes are less than 180.
    const double longitude = place->longitude == 180 ? -180 : place->longitude;
    waypoint.append_attribute("lon") = decimalText(longitude).c_str();
    appendText(waypoint, "time", instantText(plan));
    appendText(waypoint, "name", plan.name());
    if (const auto date = plan.date()) {
      const TimeZone zone = zoneOfPlan(plan);
      appendText(waypoint, "cmt", wallText(*date, zone) + " " + zone.name());
    }
    appendText(waypoint, "desc", plan.notes());
    printer.print(waypoint, 1);
  });
  return leftOut;
}

void writeKml(PlanSource& plans, const TextSink& sink) {
  pugi::xml_document document;
  auto folder = root(document, "kml", "http://www.opengis.net/kml/2.2").append_child("Document");
  appendText(folder, "name", "Planned shoots");
  folder.append_child(ElementPrinter::kPlaceholder);
  ElementPrinter printer(document, sink);
  plans.forEach([&](const Planning& plan) {
    pugi::xml_document fragment;
    auto placemark = fragment.append_child("Placemark");
    appendText(placemark, "name", plan.name());
    appendText(placemark, "description", plan.notes());
    if (const auto when = localText(plan); !when.empty()) {
      appendText(placemark.append_child("TimeStamp"), "when", when);
    }
    auto extended = placemark.append_child("ExtendedData");
    appendData(extended, "uniqueIdentifier", plan.uniqueIdentifier());
    appendData(extended, "timezone", plan.timezone());
    if (const auto place = placeOfPlan(plan)) {
      appendText(placemark.append_child("Point"), "coordinates",
                 decimalText(place->longitude) + "," + decimalText(place->latitude));
    }
    printer.print(placemark, 2);
  });
}

}  // namespace vantrel::cli
