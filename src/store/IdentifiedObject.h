#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "objectstore/ManagedObject.h"

namespace vantrel {

/// Base of all records of the main store. Main thread only, like their context.
class IdentifiedObject : public ManagedObject {
 public:
  /// Sets `uniqueIdentifier` unless it is set.
  void awakeFromInsert() override;

  /// The identity of the record across stores and devices: a random UUID in upper case.
  std::optional<std::string> uniqueIdentifier() const { return textForKey("uniqueIdentifier"); }
  void setUniqueIdentifier(const std::optional<std::string>& identifier) {
    setOptionalForKey(identifier, "uniqueIdentifier");
  }

 protected:
  std::optional<std::string> textForKey(std::string_view key) const;
  std::optional<double> numberForKey(std::string_view key) const;
  std::optional<Date> dateForKey(std::string_view key) const;
  /// `nullopt` clears the attribute.
  template <typename T>
  void setOptionalForKey(const std::optional<T>& value, std::string_view key) {
    setValueForKey(value ? Value(*value) : Value(), key);
  }
};

}  // namespace vantrel
