#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/Date.h"
#include "store/IdentifiedObject.h"

namespace vantrel {

/// A planned shoot: entity "Planning" of the main store. Absent attributes are nothing; setting
/// nothing clears them.
class Planning : public IdentifiedObject {
 public:
  std::optional<std::string> name() const { return textForKey("name"); }
  void setName(const std::optional<std::string>& name) { setOptionalForKey(name, "name"); }
  std::optional<std::string> notes() const { return textForKey("notes"); }
  void setNotes(const std::optional<std::string>& notes) { setOptionalForKey(notes, "notes"); }
  /// When the shoot takes place.
  std::optional<Date> date() const { return dateForKey("date"); }
  void setDate(const std::optional<Date>& date) { setOptionalForKey(date, "date"); }
  /// Name of the time zone that `date` is shown in.
  std::optional<std::string> timezone() const { return textForKey("timezone"); }
  void setTimezone(const std::optional<std::string>& timezone) {
    setOptionalForKey(timezone, "timezone");
  }
  /// Degrees; absent reads as nothing, which the duplicate rule takes for 0.
  std::optional<double> latitude() const { return numberForKey("latitude"); }
  void setLatitude(std::optional<double> latitude) { setOptionalForKey(latitude, "latitude"); }
  std::optional<double> longitude() const { return numberForKey("longitude"); }
  void setLongitude(std::optional<double> longitude) { setOptionalForKey(longitude, "longitude"); }
  /// How many pictures are attached.
  std::size_t imageCount() const { return countOfRelatedObjects("images"); }
};

}  // namespace vantrel
