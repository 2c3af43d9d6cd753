#include "store/IdentifiedObject.h"

#include <variant>

#include "base/Uuid.h"

namespace vantrel {

namespace {

template <typename T>
std::optional<T> valueOfKind(const ManagedObject& object, std::string_view key) {
  const Value value = object.valueForKey(key);
  const T* content = std::get_if<T>(&value);
  return content ? std::optional(*content) : std::nullopt;
}

}  // namespace

void IdentifiedObject::awakeFromInsert() {
  ManagedObject::awakeFromInsert();
  if (!uniqueIdentifier()) setValueForKey(uuidString(), "uniqueIdentifier");
}

std::optional<std::string> IdentifiedObject::textForKey(std::string_view key) const {
  return valueOfKind<std::string>(*this, key);
}

std::optional<double> IdentifiedObject::numberForKey(std::string_view key) const {
  return valueOfKind<double>(*this, key);
}

std::optional<Date> IdentifiedObject::dateForKey(std::string_view key) const {
  return valueOfKind<Date>(*this, key);
}

}  // namespace vantrel
