#pragma once

#include <optional>
#include <string>

#include "base/Date.h"
#include "store/PlacedObject.h"

namespace vantrel {

/// A planned photo shoot of the main store.
class Planning : public PlacedObject {
 public:
  static constexpr const char* kEntityName = "Planning";

  std::optional<std::string> notes() const { return textForKey("notes"); }
  void setNotes(const std::optional<std::string>& notes) { setOptionalForKey(notes, "notes"); }
  /// When the shoot takes place.
  std::optional<Date> date() const { return dateForKey("date"); }
  void setDate(const std::optional<Date>& date) { setOptionalForKey(date, "date"); }
  /// Name of the time zone in which `date` is shown, e.g. "Europe/Madrid".
  std::optional<std::string> timezone() const { return textForKey("timezone"); }
  void setTimezone(const std::optional<std::string>& timezone) {
    setOptionalForKey(timezone, "timezone");
  }
};

}  // namespace vantrel
