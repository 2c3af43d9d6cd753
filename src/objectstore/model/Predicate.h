#pragma once

#include <string>

#include "objectstore/model/Value.h"

namespace vantrel {

/// Compares an attribute with a value. Text and bytes compare byte by byte; an absent attribute
/// satisfies only kIsNil.
struct Predicate {
  enum class Operator { kEqual, kGreaterThanOrEqual, kLessThan, kIsNil };
  std::string key;
  Operator op = Operator::kEqual;
  Value value;

  static Predicate equal(std::string key, Value value) {
    return {std::move(key), Operator::kEqual, std::move(value)};
  }
  static Predicate greaterThanOrEqual(std::string key, Value value) {
    return {std::move(key), Operator::kGreaterThanOrEqual, std::move(value)};
  }
  static Predicate lessThan(std::string key, Value value) {
    return {std::move(key), Operator::kLessThan, std::move(value)};
  }
  static Predicate isNil(std::string key) { return {std::move(key), Operator::kIsNil, {}}; }
};

}  // namespace vantrel
