#pragma once

#include <string>

namespace vantrel {

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
