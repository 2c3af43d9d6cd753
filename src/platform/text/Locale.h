#pragma once

#include <string>
#include <vector>

namespace vantrel {

/// A locale by its identifier ("en_US", "ar_EG"). A value.
class Locale {
 public:
  explicit Locale(std::string identifier) : identifier_(std::move(identifier)) {}
  /// From LC_ALL, LC_TIME, LANG in this order; "C" and "POSIX" read as "en_US_POSIX".
  static Locale currentLocale();
  /// The languages for texts, best first, as BCP 47 tags ("pt-BR"): LANGUAGE, then LC_ALL,
  /// LC_MESSAGES, LANG; "en" when none is set.
  static std::vector<std::string> preferredLanguages();

  const std::string& localeIdentifier() const { return identifier_; }
  /// 1 = Sunday … 7 = Saturday.
  int firstWeekday() const;
  bool isRightToLeft() const;

 private:
  std::string identifier_;
};

}  // namespace vantrel
