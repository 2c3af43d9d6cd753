#pragma once

#include <string>
#include <vector>

namespace vantrel {

/// A locale, by its identifier: "en_US", "ar_EG". An immutable value; thread-safe.
class Locale {
 public:
  explicit Locale(std::string identifier) : identifier_(std::move(identifier)) {}
  /// From the first of LC_ALL, LC_TIME and LANG that is set: "sr_Latn_RS" for "sr_RS.UTF-8@latin".
  /// "C", "POSIX" and malformed values read as "en_US_POSIX".
  static Locale currentLocale();
  /// The languages for texts, best first, as BCP 47 tags such as "pt-BR": those of LANGUAGE, then
  /// the first of LC_ALL, LC_MESSAGES and LANG that is set. {"en"} in the C locale.
  static std::vector<std::string> preferredLanguages();

  const std::string& localeIdentifier() const { return identifier_; }
  /// 1 = Sunday … 7 = Saturday.
  int firstWeekday() const;
  bool isRightToLeft() const;

 private:
  std::string identifier_;
};

}  // namespace vantrel
