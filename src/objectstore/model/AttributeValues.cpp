#include "objectstore/model/AttributeValues.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vantrel {

namespace {

constexpr std::size_t kUuidSize = 16;

std::optional<Value> coercedInteger(AttributeType type, const Value& value) {
  const auto* integer = std::get_if<std::int64_t>(&value);
  if (!integer) return std::nullopt;
  const auto fits = [&]<typename T>(T /*narrow*/) {
    return *integer >= std::numeric_limits<T>::min() && *integer <= std::numeric_limits<T>::max();
  };
  if (type == AttributeType::kBoolean) return Value(std::int64_t{*integer != 0});
  if (type == AttributeType::kInteger16 && !fits(std::int16_t{})) return std::nullopt;
  if (type == AttributeType::kInteger32 && !fits(std::int32_t{})) return std::nullopt;
  return value;
}

std::optional<Value> coercedReal(AttributeType type, const Value& value) {
  double real = 0;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    real = static_cast<double>(*integer);
  } else if (const auto* number = std::get_if<double>(&value)) {
    real = *number;
  } else {
    return std::nullopt;
  }
  // A column cannot hold it: SQLite would keep NULL.
  if (std::isnan(real)) return std::nullopt;
  return Value(type == AttributeType::kFloat ? double{static_cast<float>(real)} : real);
}

template <typename T>
std::optional<Value> onlyA(const Value& value) {
  return std::holds_alternative<T>(value) ? std::optional(value) : std::nullopt;
}

std::string_view bytesAsText(const std::vector<std::byte>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <typename T>
int threeWay(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

}  // namespace

std::optional<Value> coercedValue(AttributeType type, const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return value;
  switch (type) {
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
    case AttributeType::kBoolean:
      return coercedInteger(type, value);
    case AttributeType::kDecimal:
    case AttributeType::kDouble:
    case AttributeType::kFloat:
      return coercedReal(type, value);
    case AttributeType::kString:
    case AttributeType::kUri:
      return onlyA<std::string>(value);
    case AttributeType::kDate: {
      const auto* date = std::get_if<Date>(&value);
      if (!date || std::isnan(date->timeIntervalSinceReferenceDate())) return std::nullopt;
      return value;
    }
    case AttributeType::kUuid: {
      const auto* bytes = std::get_if<std::vector<std::byte>>(&value);
      return bytes && bytes->size() == kUuidSize ? std::optional(value) : std::nullopt;
    }
    case AttributeType::kBinary:
    case AttributeType::kTransformable:
      return onlyA<std::vector<std::byte>>(value);
  }
  return std::nullopt;
}

Value valueInSlot(AttributeType type, const RowSnapshot& row, std::size_t slot) {
  if (row.isAbsent(slot)) return {};
  switch (type) {
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
    case AttributeType::kBoolean:
      return row.integer(slot);
    case AttributeType::kDecimal:
    case AttributeType::kDouble:
    case AttributeType::kFloat:
      return row.real(slot);
    case AttributeType::kDate:
      return Date(row.real(slot));
    case AttributeType::kString:
    case AttributeType::kUri:
      return std::string(row.text(slot));
    case AttributeType::kUuid: {
      const std::string_view text = row.text(slot);
      const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
      return std::vector<std::byte>(bytes, bytes + text.size());
    }
    case AttributeType::kBinary:
    case AttributeType::kTransformable:
      break;
  }
  return {};
}

void setValueInSlot(const Value& value, RowBuilder& row, std::size_t slot) {
  std::visit(
      [&](const auto& content) {
        using T = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<T, std::int64_t>) {
          row.setInteger(slot, content);
        } else if constexpr (std::is_same_v<T, double>) {
          row.setReal(slot, content);
        } else if constexpr (std::is_same_v<T, Date>) {
          row.setReal(slot, content.timeIntervalSinceReferenceDate());
        } else if constexpr (std::is_same_v<T, std::string>) {
          row.setText(slot, content);
        } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
          row.setText(slot, bytesAsText(content));
        }
      },
      value);
}

int compareValues(const Value& a, const Value& b) {
  if (a.index() != b.index()) return threeWay(a.index(), b.index());
  return std::visit(
      [&](const auto& content) {
        using T = std::decay_t<decltype(content)>;
        const T& other = std::get<T>(b);
        if constexpr (std::is_same_v<T, std::monostate>) {
          return 0;
        } else if constexpr (std::is_same_v<T, std::string>) {
          return content.compare(other);
        } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
          return bytesAsText(content).compare(bytesAsText(other));
        } else {
          return threeWay(content, other);
        }
      },
      a);
}

bool matches(Predicate::Operator op, const Value& value, const Value& wanted) {
  const bool isAbsent = std::holds_alternative<std::monostate>(value);
  if (op == Predicate::Operator::kIsNil) return isAbsent;
  if (isAbsent || std::holds_alternative<std::monostate>(wanted)) return false;
  const int order = compareValues(value, wanted);
  switch (op) {
    case Predicate::Operator::kEqual:
      return order == 0;
    case Predicate::Operator::kLessThan:
      return order < 0;
    default:
      return order >= 0;
  }
}

}  // namespace vantrel
