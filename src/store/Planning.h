#pragma once

#include <optional>
#include <string>

#include "base/Date.h"
#include "objectstore/ManagedObject.h"

namespace vantrel {

/// A planned shoot: entity "Planning" of the main store. Absent attributes are nothing; setting
/// nothing clears them.
class Planning : public ManagedObject {
 public:
  /// Gives a new plan its unique identifier unless it has one.
  void awakeFromInsert() override;

  /// The plan's identity across stores and devices: the text of a random UUID, upper case.
  std::optional<std::string> uniqueIdentifier() const;
  std::optional<std::string> name() const;
  void setName(const std::optional<std::string>& name);
  std::optional<std::string> notes() const;
  void setNotes(const std::optional<std::string>& notes);
  /// When the shoot takes place.
  std::optional<Date> date() const;
  void setDate(const std::optional<Date>& date);
  /// Name of the time zone that `date` is shown in.
  std::optional<std::string> timezone() const;
  void setTimezone(const std::optional<std::string>& timezone);
  /// Degrees; absent reads as nothing, which the duplicate rule takes for 0.
  std::optional<double> latitude() const;
  void setLatitude(std::optional<double> latitude);
  std::optional<double> longitude() const;
  void setLongitude(std::optional<double> longitude);
  /// How many pictures are attached.
  std::size_t imageCount() const { return countOfRelatedObjects("images"); }
};

}  // namespace vantrel
