#include <gmock/gmock.h>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using testing::HasSubstr;
using PlanTemplate = test::CommandLineTest;

TEST_F(PlanTemplate, LaysOutPlansAsAsked) {
  const std::string dated = add({"--name", "Blue\x1b[2J hour\n\xe2\x80\xae{time}", "--notes",
                                 "Mole\nat \x07 five", "--date", "2026-07-16 05:05", "--timezone",
                                 "Asia/Tokyo", "--latitude", "41.39", "--longitude", "-.5"});
  const std::string undated = add({"--notes", "No more than this"});
  struct Case {
    const char* format;
    const char* locale;
    std::string dated;
    std::string undated;
  };
  // Dates and times of CLDR 42, which ICU 72 carries; in front of AM a narrow no-break space.
  const Case cases[] = {
      {"{day}, {date} {time}", "en_US", "Jul 16, 7/16/26 5:05\u202fAM", "--, -- --"},
      {"{day}, {date} {time}", "en_GB", "16 Jul, 16/07/26 05:05", "--, -- --"},
      {"{day}, {date} {time}", "de_DE", "16. Juli, 16.07.26 05:05", "--, -- --"},
      {"{day}, {date} {time}", "ar_EG", "١٦ يوليو, ١٦‏/٧‏/٢٠٢٦ ٥:٠٥ ص",
       "--, -- --"},
      {"{zone}\\t{instant}", "ar_EG", "Asia/Tokyo\t2026-07-15T20:05:00Z", "Europe/Madrid\t--"},
      {"{latitude},{longitude}", "de_DE", "41.39,-0.5", "--,--"},
      {"{name}|{notes}", "en_US", "Blue\ufffd[2J hour \ufffd{time}|Mole at \ufffd five",
       "--|No more than this"},
      {"{{{id}}} \\\\", "en_US", "{" + dated + "} \\", "{" + undated + "} \\"},
      {"-", "en_US", "-", "-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.format) + " " + c.locale);
    const auto result =
        run({"plan", "list", "--format", c.format}, {{"LC_ALL", std::string(c.locale) + ".UTF-8"}});
    EXPECT_EQ(result.output, c.dated + "\n" + c.undated + "\n") << result.errors;
  }
  EXPECT_THAT(run({"plan", "list", "--format", "{link}"}).output,
              testing::StartsWith("vantrel://plan?id=x-coredata:%2F%2F"));

  for (const auto& [format, why] : std::map<std::string, const char*>{
           {"{nmae}", "did you mean {name}?"},
           {"{x\x1b}", "there are name, notes"},
           {"{name", "no } behind {"},
           {"}", "no { before }"},
           {"\xff", "UTF-8"},
       }) {
    const auto result = run({"plan", "list", "--format", format});
    EXPECT_EQ(result.exitCode, 64) << format;
    EXPECT_TRUE(test::isOneLine(result.errors)) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr(why));
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(run({"plan", "list", "--json", "--format", "x"}).exitCode, 64);
}

}  // namespace
}  // namespace vantrel
