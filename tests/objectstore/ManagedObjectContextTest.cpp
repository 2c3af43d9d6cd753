#include "objectstore/ManagedObjectContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "objectstore/StoreError.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;
using test::sqlite;

constexpr double kDay = 86400;

class ManagedObjectContextTest : public testing::Test {
 protected:
  const test::TemporaryDirectory directory_;
  const std::filesystem::path file_ = directory_ / "Vantrel.sqlite";
};

FetchRequest from(double date, std::size_t limit) {
  return {.entityName = "Planning",
          .predicate = Predicate::greaterThanOrEqual("date", Date(date)),
          .sortDescriptors = {{"date", true}},
          .fetchLimit = limit};
}

TEST_F(ManagedObjectContextTest, KeepsWhatWasSavedForTheNextProgram) {
  std::string uri;
  {
    OpenStore writer(file_);
    ASSERT_TRUE(writer.store) << writer.store.error().localizedDescription;
    const auto plan = writer.insertPlan("Grün 日本 '\"", 740633400.25);
    plan->setLatitude(41.39);
    plan->setTimezone("Europe/Madrid");
    EXPECT_TRUE(plan->objectID().isTemporaryID());
    EXPECT_TRUE(writer.context.hasChanges());
    ASSERT_TRUE(writer.context.save());
    EXPECT_FALSE(writer.context.hasChanges());
    uri = plan->objectID().URIRepresentation();
    EXPECT_EQ(uri, "x-coredata://" + (*writer.store)->metadata().uuid + "/Planning/p1");
  }
  EXPECT_EQ(sqlite(file_,
                   "SELECT Z_PK, Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE IS NULL, ZNAME,"
                   " ZTIMEZONE, length(ZUNIQUEIDENTIFIER) FROM ZPLANNING"),
            "1|4|1|740633400.25|41.39|1|Grün 日本 '\"|Europe/Madrid|36");
  OpenStore reader(file_);
  const auto found = reader.context.objectWithURI(uri);
  ASSERT_TRUE(found && *found);
  const auto plan = std::dynamic_pointer_cast<Planning>(*found);
  ASSERT_TRUE(plan);
  EXPECT_EQ(plan->name(), "Grün 日本 '\"");
  EXPECT_EQ(plan->date(), Date(740633400.25));
  EXPECT_EQ(plan->longitude(), std::nullopt);
}

TEST_F(ManagedObjectContextTest, FetchesTheNextOnesWithPendingChangesCounted) {
  OpenStore store(file_);
  for (const auto& [name, day] : {std::pair("e", 5.), {"c", 3.}, {"a", 1.}, {"d", 4.}, {"b", 2.}}) {
    store.insertPlan(name, day * kDay);
  }
  EXPECT_EQ(store.names(from(2 * kDay, 3)), "b c d") << "none is saved yet";
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(store.names(from(2 * kDay, 3)), "b c d");
}

}  // namespace
}  // namespace vantrel
