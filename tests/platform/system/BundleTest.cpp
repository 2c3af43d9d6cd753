#include "platform/system/Bundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Guards.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;

Expected<StringTable> read(std::string_view content) {
  return stringTableWithData(std::as_bytes(std::span(content)));
}

TEST(StringTable, ReadsTheTextForm) {
  using namespace std::string_literals;
  const std::pair<std::string, StringTable> cases[] = {
      {"", {}},
      {"/* a */ \"k\" /* b */ = // c\n \"v\" ; // d", {{"k", "v"}}},
      {"\"a//b\" = \"/* c */\";", {{"a//b", "/* c */"}}},
      {"a=b;c=d;", {{"a", "b"}, {"c", "d"}}},
      {"plan.no_1 = x-y/z;", {{"plan.no_1", "x-y/z"}}},
      {R"("k" = "a\"b\\c\nd\te\q";)", {{"k", "a\"b\\c\nd\teq"}}},
      {R"("k" = "\U00e9\U65E5 \Ud83c\udf05";)", {{"k", "é日 🌅"}}},
      {R"("k" = "\101\0512";)", {{"k", "A)2"}}},
      {"\"k\" = \"a\nb\";", {{"k", "a\nb"}}},
      {"k = 1; k = 2;", {{"k", "2"}}},
      {"\"k\";", {{"k", ""}}},
      {"\"k\" = \"100% %@\";", {{"k", "100% %@"}}},
      {"\xef\xbb\xbf\"k\" = \"ü\";", {{"k", "ü"}}},
      {"\xff\xfek\0=\0\xfc\0;\0"s, {}},
      {"\xff\xfek\0=\0\"\0\xfc\0\"\0;\0"s, {{"k", "ü"}}},
      {"\xfe\xff\0k\0=\0\"\x04\x16\0\"\0;"s, {{"k", "Ж"}}},
      {"<?xml?><plist><dict><key>k</key><string>v</string></dict></plist>", {{"k", "v"}}},
  };
  for (const auto& [content, table] : cases) {
    EXPECT_EQ(read(content).value_or(StringTable()), table) << content;
  }
}

TEST(StringTable, RejectsDamage) {
  for (const char* content :
       {"\"k\" = \"v\"", "\"k\" = \"v", "\"k\" = ;", "= \"v\";", "/* open", "\"k\" \"v\";", "\"k",
        "\"k\" = \"\\", "\"k\" = \"\xff\";", "\xff\xfek", "k = ü;", "bplist00", "{ k = v; }"}) {
    SCOPED_TRACE(content);
    EXPECT_FALSE(read(content));
  }
  EXPECT_THAT(read("a = b;\n\nc").error().localizedDescription, testing::HasSubstr("line 3"));
}

TEST(StringTable, ReadsForeignTables) {
  const auto path = test::testData("strings/en.lproj/FirebaseAuthUI.strings");
  const auto english = read(test::readFile(path));
  ASSERT_TRUE(english);
  std::string text;
  for (const auto& [key, value] : *english) text.append(key).append("=").append(value).append("\n");
  EXPECT_EQ(text, test::python(path, "''.join(f'{k}={v}\\n' for k, v in sorted(p.items()))"));
}

class BundleTest : public testing::Test {
 protected:
  void addTable(const std::string& language, const std::string& table, const std::string& content) {
    fs::create_directories(directory_ / (language + ".lproj"));
    test::writeFile(directory_ / (language + ".lproj") / (table + ".strings"), content);
  }
  test::TemporaryDirectory directory_;
};

TEST_F(BundleTest, UsesTheFirstAvailableLanguage) {
  for (const char* language : {"en", "de", "pt-BR", "zh-Hans", "zh-Hant", "es", "es-MX", "Base"}) {
    addTable(language, "Common", "\"which\" = \"" + std::string(language) + "\";");
  }
  addTable("en", "Rare", "which = rare;");
  addTable("Base", "Basic", "which = basic;");
  const std::pair<const char*, const char*> cases[] = {
      {"de", "de"},         {"de_AT", "de"},       {"de_AT:es", "de"},   {"es_AR", "es"},
      {"es_MX", "es-MX"},   {"pt", "pt-BR"},       {"zh_CN", "zh-Hans"}, {"zh_TW", "zh-Hant"},
      {"zh_HK", "zh-Hant"}, {"fr:ja:de:es", "de"}, {"fr", "en"},         {"en_GB", "en"},
      {"xx_YY", "en"},      {"sr_RS@latin", "en"}, {"../../etc", "en"},
  };
  for (const auto& [wanted, preferred] : cases) {
    SCOPED_TRACE(wanted);
    const test::EnvironmentGuard locale("LC_ALL", "en_US.UTF-8");
    const test::EnvironmentGuard languages("LANGUAGE", wanted);
    const Bundle bundle(directory_.path());
    EXPECT_EQ(bundle.localizedString("which", "", "Common"), preferred);
    EXPECT_EQ(bundle.localizedString("which", "", "Rare"), "rare");
    EXPECT_EQ(bundle.localizedString("which", "", "Basic"), "basic");
  }
}

TEST_F(BundleTest, FallsBackToTheValueOrTheKey) {
  addTable("en", "Common", "\"k\" = \"v\"; \"empty\" = \"\";");
  addTable("en", "Damaged", "\"k\" = \"v");
  const Bundle bundle(directory_.path());
  EXPECT_EQ(bundle.localizedString("k", "default", "Common"), "v");
  EXPECT_EQ(bundle.localizedString("empty", "default", "Common"), "");
  EXPECT_EQ(bundle.localizedString("missing", "default", "Common"), "default");
  EXPECT_EQ(bundle.localizedString("missing", "", "Common"), "missing");
  EXPECT_EQ(bundle.localizedString(std::nullopt, "default", "Common"), "default");
  EXPECT_EQ(bundle.localizedString("k", "", "NoSuchTable"), "k");
  test::LogCapture log;
  EXPECT_EQ(bundle.localizedString("k", "", "Damaged"), "k");
  EXPECT_EQ(bundle.localizedString("k", "x", "Damaged"), "x");
  EXPECT_THAT(log.text(), testing::MatchesRegex(".*Damaged\\.strings: .*line 1\\.\n")) << "once";
  test::writeFile(directory_ / "Model.mom", "");
  EXPECT_EQ(bundle.urlForResource("Model", "mom"), directory_ / "Model.mom");
  EXPECT_FALSE(bundle.urlForResource("Model", "momd"));
}

}  // namespace
}  // namespace vantrel
