#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "objectstore/ManagedObject.h"

namespace vantrel {

/// What all records of the main store share: an identity across stores and devices.
class IdentifiedObject : public ManagedObject {
 public:
  /// Gives a new record its unique identifier unless it has one.
  void awakeFromInsert() override;

  /// The text of a random UUID, upper case.
  std::optional<std::string> uniqueIdentifier() const { return textForKey("uniqueIdentifier"); }

 protected:
  std::optional<std::string> textForKey(std::string_view key) const;
  std::optional<double> numberForKey(std::string_view key) const;
  std::optional<Date> dateForKey(std::string_view key) const;
  /// Nothing clears the attribute.
  template <typename T>
  void setOptionalForKey(const std::optional<T>& value, std::string_view key) {
    setValueForKey(value ? Value(*value) : Value(), key);
  }
};

}  // namespace vantrel
