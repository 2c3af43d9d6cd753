#include "cli/camera/SensorFormats.h"

#include <algorithm>
#include <optional>

#include "cli/Suggestion.h"
#include "common/ExitCode.h"
#include "store/Database.h"

namespace vantrel::cli {

namespace {

float sizeOf(const ManagedObject& format, const char* key) {
  const Value value = format.valueForKey(key);
  const auto* size = std::get_if<double>(&value);
  return size ? static_cast<float>(*size) : 0;
}

std::string listed(const std::vector<SensorFormat>& formats) {
  std::string names;
  for (const auto& format : formats) names += (names.empty() ? "" : ", ") + format.name;
  return names;
}

/// Suggests the last name that `text` begins with, as "aps-c 1.5x" does with "APS-C", otherwise the
/// most similar one.
std::string suggestion(const std::string& text, const std::vector<SensorFormat>& formats) {
  const std::string wanted = folded(text);
  std::vector<std::string> names;
  std::optional<std::string> word;
  for (const auto& format : formats) {
    names.push_back(folded(format.name));
    if (wanted.starts_with(names.back())) word = names.back();
  }
  if (!word) word = nearestWord(wanted, names);
  if (!word) return "see vantrel camera sensors";
  const auto at = std::find(names.begin(), names.end(), *word) - names.begin();
  return "did you mean \"" + formats[static_cast<std::size_t>(at)].name + "\"?";
}

}  // namespace

Expected<std::vector<SensorFormat>> sensorFormats() {
  ManagedObjectContext* context = Database::sharedInstance().staticManagedObjectContext();
  return context->executeFetchRequest({.entityName = "SensorFormat"}).map([](const auto& objects) {
    std::vector<SensorFormat> formats;
    for (const auto& object : objects) {
      const Value value = object->valueForKey("name");
      const auto* name = std::get_if<std::string>(&value);
      formats.push_back(
          {name ? *name : std::string(), sizeOf(*object, "width"), sizeOf(*object, "height")});
    }
    return formats;
  });
}

Expected<SensorFormat> sensorNamed(const std::string& option, const std::string& text) {
  const auto formats = sensorFormats();
  if (!formats) return tl::unexpected(formats.error());
  const std::string wanted = folded(text);
  // Shorter words are part of too many names.
  constexpr std::size_t kShortestPart = 3;
  std::vector<SensorFormat> matches;
  for (const auto& format : *formats) {
    const std::string name = folded(format.name);
    if (name == wanted) return format;
    if (wanted.size() >= kShortestPart && name.find(wanted) != std::string::npos) {
      matches.push_back(format);
    }
  }
  if (matches.size() == 1) return matches.front();
  return tl::unexpected(failure(
      kExitUsage, option,
      matches.empty() ? "no sensor \"" + text + "\"; " + suggestion(text, *formats)
                      : "more than one sensor matches \"" + text + "\": " + listed(matches)));
}

}  // namespace vantrel::cli
