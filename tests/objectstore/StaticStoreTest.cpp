#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/PersistentStoreCoordinator.h"
#include "platform/Bundle.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

TEST(StaticStore, HoldsTheSensorFormats) {
  const auto& bundle = Bundle::mainBundle();
  auto model = ManagedObjectModel::modelWithContentsOfURL(
      bundle.urlForResource("VantrelStatic", "momd").value());
  ASSERT_TRUE(model);
  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(
      std::make_shared<ManagedObjectModel>(std::move(*model)));
  StoreOptions options;
  options.readOnly = true;
  const auto store = coordinator->addPersistentStore(
      bundle.urlForResource("VantrelStatic", "sqlite").value(), options);
  ASSERT_TRUE(store) << store.error().localizedDescription;
  // Nothing beside the file: it is read where nobody may write.
  EXPECT_FALSE(bundle.urlForResource("VantrelStatic", "sqlite-wal"));

  ManagedObjectContext context(coordinator);
  const auto formats = context.executeFetchRequest({"SensorFormat", {}, {{"width", true}}, 0});
  ASSERT_TRUE(formats);
  ASSERT_GE(formats->size(), 15U);
  bool fullFrame = false;
  for (const auto& format : *formats) {
    const auto width = std::get<double>(format->valueForKey("width"));
    const auto height = std::get<double>(format->valueForKey("height"));
    EXPECT_GE(width, height);
    EXPECT_EQ(std::get<std::string>(format->valueForKey("uniqueIdentifier")).size(), 36U);
    fullFrame = fullFrame || (width == 36 && height == 24);
  }
  EXPECT_TRUE(fullFrame);
}

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
