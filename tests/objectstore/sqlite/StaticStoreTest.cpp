#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/Bundle.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

TEST(StaticStore, IsNotMadeFromADamagedTable) {
  const test::TemporaryDirectory directory;
  const auto model = Bundle::mainBundle().urlForResource("VantrelStatic", "momd").value();
  for (const char* line : {"Full frame\t36\t24", "\t36\t24\tID", "A\t36mm\t24\tID", "A\t36\t-1\tID",
                           "A\t36\tnan\tID"}) {
    SCOPED_TRACE(line);
    test::writeFile(directory / "sensors.tsv", "# name\n" + std::string(line) + "\n");
    const auto result =
        test::runProgram({"storec", model, directory / "sensors.tsv", directory / "S.sqlite"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, testing::HasSubstr("sensors.tsv:2: "));
    using Entries = std::filesystem::directory_iterator;
    EXPECT_EQ(std::distance(Entries(directory.path()), Entries()), 1) << "only the table is there";
  }
}

}  // namespace
}  // namespace vantrel
