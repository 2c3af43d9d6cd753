#pragma once

#include <optional>
#include <string>

namespace vantrel {

/// A unit of length. A value.
class DistanceUnit {
 public:
  /// `abbrName` defaults to `name`.
  DistanceUnit(std::string name, const std::optional<std::string>& abbrName, float factor,
               bool allowsDecimals)
      : name_(std::move(name)),
        abbrName_(abbrName.value_or(name_)),
        factor_(factor),
        allowsDecimals_(allowsDecimals) {}

  /// Localised.
  const std::string& name() const { return name_; }
  const std::string& abbrName() const { return abbrName_; }
  /// The size of one unit in its system's base unit: metres, or feet.
  float factor() const { return factor_; }
  bool allowsDecimals() const { return allowsDecimals_; }

 private:
  std::string name_;
  std::string abbrName_;
  float factor_;
  bool allowsDecimals_;
};

/// A fraction of an inch with its text, e.g. "19/32". A value.
class InchesFraction {
 public:
  InchesFraction(std::string fraction, float decimalValue)
      : fraction_(std::move(fraction)), decimalValue_(decimalValue) {}

  float decimalValue() const { return decimalValue_; }
  const std::string& fraction() const { return fraction_; }

 private:
  std::string fraction_;
  float decimalValue_;
};

}  // namespace vantrel
