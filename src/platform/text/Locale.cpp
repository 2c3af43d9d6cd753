#include "platform/text/Locale.h"

#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "base/Ascii.h"

namespace vantrel {

namespace {

constexpr std::string_view kPosixLocale = "en_US_POSIX";

/// The first variable that is set and not empty, as in libc.
std::string_view firstSet(std::initializer_list<const char*> variables) {
  for (const char* variable : variables) {
    if (const char* value = std::getenv(variable); value && *value) return value;
  }
  return {};
}

std::string_view scriptForModifier(std::string_view modifier) {
  if (modifier == "latin") return "Latn";
  if (modifier == "cyrillic") return "Cyrl";
  if (modifier == "devanagari") return "Deva";
  return {};
}

/// Returns "sr_Latn_RS" for "sr_RS.UTF-8@latin". Ignores the code set, and modifiers other than
/// scripts and variants.
std::string identifierFromPosix(std::string_view name) {
  const auto at = name.find('@');
  const auto modifier = at == std::string_view::npos ? std::string_view() : name.substr(at + 1);
  std::string identifier(name.substr(0, name.find_first_of(".@")));
  std::replace(identifier.begin(), identifier.end(), '-', '_');
  if (identifier.empty() || identifier == "C" || identifier == "POSIX" ||
      !std::all_of(identifier.begin(), identifier.end(), isAsciiWordCharacter<char>)) {
    return std::string(kPosixLocale);
  }
  if (const auto script = scriptForModifier(modifier); !script.empty()) {
    const auto territory = std::min(identifier.find('_'), identifier.size());
    identifier.insert(territory, "_" + std::string(script));
  } else if (modifier == "valencia") {
    identifier += "_VALENCIA";
  }
  // ICU returns null formatters for a locale that it cannot parse.
  if (icu::Locale(identifier.c_str()).isBogus()) return std::string(kPosixLocale);
  return identifier;
}

void addLanguage(std::vector<std::string>& languages, const std::string& identifier) {
  UErrorCode status = U_ZERO_ERROR;
  const auto text = icu::Locale(identifier.c_str()).toLanguageTag<std::string>(status);
  if (U_FAILURE(status)) return;
  if (text == "und" || std::find(languages.begin(), languages.end(), text) != languages.end()) {
    return;
  }
  languages.push_back(text);
}

}  // namespace

Locale Locale::currentLocale() {
  return Locale(identifierFromPosix(firstSet({"LC_ALL", "LC_TIME", "LANG"})));
}

std::vector<std::string> Locale::preferredLanguages() {
  const auto identifier = identifierFromPosix(firstSet({"LC_ALL", "LC_MESSAGES", "LANG"}));
  // As in gettext, the C locale overrides LANGUAGE.
  if (identifier == kPosixLocale) return {"en"};
  std::vector<std::string> languages;
  std::string_view rest = firstSet({"LANGUAGE"});
  while (!rest.empty()) {
    const auto entry = rest.substr(0, rest.find(':'));
    if (!entry.empty()) addLanguage(languages, identifierFromPosix(entry));
    rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
  }
  addLanguage(languages, identifier);
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

int Locale::firstWeekday() const {
  UErrorCode status = U_ZERO_ERROR;
  // A fixed zone saves ICU the detection of the device's zone.
  const icu::GregorianCalendar calendar(icu::SimpleTimeZone(0, icu::UnicodeString()),
                                        icu::Locale(identifier_.c_str()), status);
  return U_SUCCESS(status) ? calendar.getFirstDayOfWeek(status) : UCAL_SUNDAY;
}

bool Locale::isRightToLeft() const {
  return uloc_isRightToLeft(identifier_.c_str());
}

}  // namespace vantrel
