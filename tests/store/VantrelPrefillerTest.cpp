#include "store/VantrelPrefiller.h"

#include <gtest/gtest.h>

#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;

TEST(VantrelPrefiller, TranslatesOnlyKeys) {
  const test::EnvironmentGuard language("LANGUAGE", "de");
  const test::EnvironmentGuard locale("LC_ALL", "de_DE.UTF-8");
  const test::TemporaryDirectory directory;
  OpenStore store(directory / "Vantrel.sqlite");
  using Text = std::optional<std::string>;
  struct Case {
    const char* name;
    Text before;
    Text after;
  };
  const Case cases[] = {
      {"a key", "plan_sample_harbour_name", "Sonnenaufgang am alten Hafen"},
      {"ordinary text", "Sunrise, 100 %@", "Sunrise, 100 %@"},
      {"a key of another table", "plan_no_scheduled", "plan_no_scheduled"},
      {"empty", "", ""},
      {"nothing", std::nullopt, ""},
  };
  std::vector<std::shared_ptr<Planning>> plans;
  for (const auto& c : cases) {
    plans.push_back(store.insertPlan("", 0));
    plans.back()->setName(c.before);
    plans.back()->setNotes(c.before);
  }
  ASSERT_TRUE(store.context.save());
  const auto versions = [&] {
    return test::sqlite(directory / "Vantrel.sqlite",
                        "SELECT group_concat(Z_OPT) FROM (SELECT Z_OPT FROM ZPLANNING "
                        "ORDER BY Z_PK)");
  };
  // Unchanged records are not saved: Z_OPT, which counts the saves of a row, does not change.
  for (int pass = 0; pass < 2; ++pass) {
    VantrelPrefiller::translateDataInManagedObjectModel(store.context);
    EXPECT_FALSE(store.context.hasChanges());
    for (std::size_t i = 0; i < plans.size(); ++i) {
      EXPECT_EQ(plans[i]->name(), cases[i].after) << cases[i].name;
      EXPECT_EQ(plans[i]->notes(), cases[i].after) << cases[i].name;
    }
    EXPECT_EQ(versions(), "2,1,1,1,2");
  }
}

TEST(VantrelPrefiller, LogsAFailedSaveOnly) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "Vantrel.sqlite";
  OpenStore store(file);
  const auto plan = store.insertPlan("plan_sample_bridge_name", 0);
  ASSERT_TRUE(store.context.save());
  test::sqlite(file,
               "CREATE TRIGGER full BEFORE UPDATE ON ZPLANNING BEGIN "
               "SELECT RAISE(ABORT, 'no room'); END");
  {
    test::LogCapture log;
    VantrelPrefiller::translateDataInManagedObjectModel(store.context);
    EXPECT_NE(log.text().find("Error translating plannings ("), std::string::npos) << log.text();
  }
  EXPECT_TRUE(store.context.hasChanges());
  EXPECT_EQ(plan->name(), "Blue hour from the bridge");

  OpenStore missing(directory / "no/Vantrel.sqlite");
  test::LogCapture log;
  VantrelPrefiller::translateDataInManagedObjectModel(missing.context);
  EXPECT_EQ(log.text(), "");
}

}  // namespace
}  // namespace vantrel
