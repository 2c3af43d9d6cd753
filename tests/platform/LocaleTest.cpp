#include "platform/Locale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "support/Guards.h"

namespace vantrel {
namespace {

using test::EnvironmentGuard;

TEST(Locale, FollowsTheEnvironment) {
  struct Case {
    const char* name;
    std::optional<std::string> lcAll, lcTime, lcMessages, lang, language;
    const char* identifier;
    std::vector<std::string> languages;
  };
  constexpr auto kUnset = std::nullopt;
  const Case cases[] = {
      {"nothing set", kUnset, kUnset, kUnset, kUnset, kUnset, "en_US_POSIX", {"en"}},
      {"LANG", kUnset, kUnset, kUnset, "de_DE.UTF-8", kUnset, "de_DE", {"de-DE"}},
      {"by category", kUnset, "en_GB.UTF-8", "fr_FR", "de_DE", kUnset, "en_GB", {"fr-FR"}},
      {"LC_ALL over all", "ja_JP.UTF-8", "en_GB", "fr_FR", "de_DE", kUnset, "ja_JP", {"ja-JP"}},
      {"empty is unset", "", "", "", "pt_BR", "", "pt_BR", {"pt-BR"}},
      {"code set and euro",
       "es_ES.ISO-8859-15@euro",
       kUnset,
       kUnset,
       kUnset,
       kUnset,
       "es_ES",
       {"es-ES"}},
      {"script", "sr_RS@latin", kUnset, kUnset, kUnset, kUnset, "sr_Latn_RS", {"sr-Latn-RS"}},
      {"variant",
       "ca_ES.UTF-8@valencia",
       kUnset,
       kUnset,
       kUnset,
       kUnset,
       "ca_ES_VALENCIA",
       {"ca-ES-valencia"}},
      {"old code", "iw_IL", kUnset, kUnset, kUnset, kUnset, "iw_IL", {"he-IL"}},
      {"LANGUAGE",
       kUnset,
       kUnset,
       kUnset,
       "de_AT",
       "fr_CH:de::de_AT:en",
       "de_AT",
       {"fr-CH", "de", "de-AT", "en"}},
      {"LANGUAGE and the plain locale",
       "C.UTF-8",
       kUnset,
       kUnset,
       kUnset,
       "fr",
       "en_US_POSIX",
       {"en"}},
      {"POSIX", kUnset, "POSIX", kUnset, "de_DE", kUnset, "en_US_POSIX", {"de-DE"}},
      {"no locale's name", "../de", kUnset, kUnset, kUnset, kUnset, "en_US_POSIX", {"en"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const EnvironmentGuard lcAll("LC_ALL", c.lcAll);
    const EnvironmentGuard lcTime("LC_TIME", c.lcTime);
    const EnvironmentGuard lcMessages("LC_MESSAGES", c.lcMessages);
    const EnvironmentGuard lang("LANG", c.lang);
    const EnvironmentGuard language("LANGUAGE", c.language);
    EXPECT_EQ(Locale::currentLocale().localeIdentifier(), c.identifier);
    EXPECT_EQ(Locale::preferredLanguages(), c.languages);
  }
}

TEST(Locale, KnowsTheDirectionOfWriting) {
  for (const char* name : {"ar_EG", "he_IL", "fa_IR", "ur_PK", "az_Arab_IR"}) {
    EXPECT_TRUE(Locale(name).isRightToLeft()) << name;
  }
  for (const char* name : {"en_US", "ja_JP", "en_US_POSIX", "az_AZ", ""}) {
    EXPECT_FALSE(Locale(name).isRightToLeft()) << name;
  }
}

}  // namespace
}  // namespace vantrel
