#include "platform/text/Locale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <map>
#include <optional>

#include "support/Guards.h"

namespace vantrel {
namespace {

TEST(Locale, FollowsTheEnvironment) {
  using Environment = std::map<std::string, std::string>;
  struct Case {
    Environment environment;
    const char* identifier;
    std::vector<std::string> languages;
  };
  const Case cases[] = {
      {{}, "en_US_POSIX", {"en"}},
      {{{"LANG", "de_DE.UTF-8"}}, "de_DE", {"de-DE"}},
      {{{"LC_TIME", "en_GB.UTF-8"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "de"}}, "en_GB", {"fr-FR"}},
      {{{"LC_ALL", "ja_JP.UTF-8"}, {"LC_TIME", "en_GB"}, {"LANG", "de"}}, "ja_JP", {"ja-JP"}},
      {{{"LC_ALL", ""}, {"LC_TIME", ""}, {"LANG", "pt_BR"}, {"LANGUAGE", ""}}, "pt_BR", {"pt-BR"}},
      {{{"LC_ALL", "es_ES.ISO-8859-15@euro"}}, "es_ES", {"es-ES"}},
      {{{"LC_ALL", "sr_RS@latin"}}, "sr_Latn_RS", {"sr-Latn-RS"}},
      {{{"LC_ALL", "ca_ES.UTF-8@valencia"}}, "ca_ES_VALENCIA", {"ca-ES-valencia"}},
      {{{"LC_ALL", "iw_IL"}}, "iw_IL", {"he-IL"}},
      {{{"LANG", "de_AT"}, {"LANGUAGE", "fr_CH:de::de_AT:en"}},
       "de_AT",
       {"fr-CH", "de", "de-AT", "en"}},
      {{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "fr"}}, "en_US_POSIX", {"en"}},
      {{{"LC_TIME", "POSIX"}, {"LANG", "de_DE"}}, "en_US_POSIX", {"de-DE"}},
      {{{"LC_ALL", "../de"}}, "en_US_POSIX", {"en"}},
      {{{"LC_ALL", "serbocroatian"}}, "en_US_POSIX", {"en"}},
      {{{"LC_ALL", std::string(10'000, 'a')}}, "en_US_POSIX", {"en"}},
      {{{"LC_ALL", "und"}}, "und", {"en"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.environment));
    std::list<test::EnvironmentGuard> guards;
    for (const char* name : {"LC_ALL", "LC_TIME", "LC_MESSAGES", "LANG", "LANGUAGE"}) {
      const auto value = c.environment.find(name);
      guards.emplace_back(
          name, value == c.environment.end() ? std::nullopt : std::optional(value->second));
    }
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
