#include "store/DuplicateRule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "store/Database.h"
#include "store/Planning.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;
using test::sqlite;
using testing::ElementsAre;

TEST(DuplicateRule, ComparesAPair) {
  struct Case {
    const char* name;
    const char* first;  ///< Values of ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME.
    const char* second;
    bool isDuplicate;
  };
  const Case cases[] = {
      {"alike", "1, 41.39, 2.17, 'a'", "1, 41.39, 2.17, 'a'", true},
      {"another date", "1, 41.39, 2.17, 'a'", "1.5, 41.39, 2.17, 'a'", false},
      {"another case", "1, 41.39, 2.17, 'a'", "1, 41.39, 2.17, 'A'", false},
      {"composed and not", "1, 41.39, 2.17, 'é'", "1, 41.39, 2.17, 'e' || char(769)", false},
      {"no names", "1, 41.39, 2.17, NULL", "1, 41.39, 2.17, NULL", false},
      {"no dates", "NULL, 41.39, 2.17, 'a'", "NULL, 41.39, 2.17, 'a'", false},
      {"an absent place is 0", "1, NULL, 2.17, 'a'", "1, 9e-8, 2.17, 'a'", true},
      {"0 and -0", "0.0, 0.0, 2.17, 'a'", "-0.0, -0.0, 2.17, 'a'", true},
      // Plain double arithmetic decides: 9.99999994e-8, and 1.00000001e-7.
      {"just close", "1, 10, 2.17, 'a'", "1, 10.0000001, 2.17, 'a'", true},
      {"just too far", "1, 41.39, 2.17, 'a'", "1, 41.3900001, 2.17, 'a'", false},
      {"too far by nothing", "1, 0, 2.17, 'a'", "1, 1e-7, 2.17, 'a'", false},
      {"longitudes too far", "1, 41.39, 2.17, 'a'", "1, 41.39, 2.1700002, 'a'", false},
      {"no wrap at 180", "1, 0, 180, 'a'", "1, 0, -180, 'a'", false},
      {"sparse numbers", "1, 1073741824, 2, 'a'", "1, 1073741824.0000001, 2, 'a'", true},
      {"next to each other", "1, 1073741824, 2, 'a'", "1, 1073741823.9999999, 2, 'a'", false},
      {"infinite", "1, 9e999, 2, 'a'", "1, 9e999, 2, 'a'", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory directory;
    OpenStore store(directory / "Vantrel.sqlite");
    sqlite(
        directory / "Vantrel.sqlite",
        "INSERT INTO ZPLANNING (Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME) VALUES (4, 1, " +
            std::string(c.first) + "), (4, 1, " + c.second + ")");
    const auto plans = *store.context.executeFetchRequest({.entityName = "Planning"});
    ASSERT_EQ(plans.size(), 2u);
    EXPECT_EQ(isDuplicate(kPlanningRule, *plans[0], *plans[1]), c.isDuplicate);
    EXPECT_EQ(duplicateIndexes(kPlanningRule, plans, {0, 0}).size(), c.isDuplicate);
    EXPECT_THAT(duplicateIndexes(kPlanningRule, plans, {0, 1}), ElementsAre());
  }
}

TEST(DuplicateRule, ListsARecordOncePerEarlierEqual) {
  const test::TemporaryDirectory directory;
  OpenStore store(directory / "Vantrel.sqlite");
  ManagedObjectContext::Objects plans(3);
  for (auto& plan : plans) plan = store.insertPlan("a", 1);
  Database database;
  const auto all = database.duplicateObjectsInArray(
      plans, [](const auto& a, const auto& b) { return isDuplicate(kPlanningRule, a, b); });
  EXPECT_THAT(all, ElementsAre(plans[1], plans[2], plans[2]));
  // A comparison that is neither symmetric nor transitive.
  const auto next = database.duplicateObjectsInArray(
      plans, [&](const auto& a, const auto& b) { return &a == plans[0].get() && &b != &a; });
  EXPECT_THAT(next, ElementsAre(plans[1], plans[2]));
}

TEST(DuplicateRule, EqualsAComparisonOfAllPairs) {
  const test::TemporaryDirectory directory;
  OpenStore store(directory / "Vantrel.sqlite");
  Database database;
  std::mt19937 random(20260715);
  const auto below = [&](std::size_t end) { return static_cast<double>(random() % end); };
  const auto mostly = [&](auto value) {
    return random() % 20 ? std::optional(value) : std::nullopt;
  };
  // Chains and lattices around the tolerance, on both sides of 0 and where doubles are sparse.
  const double bases[] = {0, -3e-7, 41.39, -90, 180, 1073741823.9999998, 1e300};
  const double steps[] = {1e-7, 3e-8, 4.9e-8, 5.96e-8, 9.9e-8};
  std::size_t found = 0;
  for (int round = 0; round < 40; ++round) {
    const double step = steps[random() % std::size(steps)];
    const double base = bases[random() % std::size(bases)];
    const std::size_t spread = 1 + random() % 12;
    ManagedObjectContext::Objects plans;
    for (int i = 0; i < 150; ++i) {
      const auto plan = store.insertPlan("", 0);
      plan->setLatitude(mostly(base + step * below(spread)));
      plan->setLongitude(mostly(base + step * below(spread)));
      plan->setDate(mostly(Date(below(2))));
      plan->setName(mostly(std::string(40, random() % 2 ? 'a' : 'b')));
      plans.push_back(plan);
    }
    const auto all = database.duplicateObjectsInArray(
        plans, [](const auto& a, const auto& b) { return isDuplicate(kPlanningRule, a, b); });
    const std::set<std::shared_ptr<ManagedObject>> expected(all.begin(), all.end());
    std::set<std::shared_ptr<ManagedObject>> actual;
    const std::vector<std::size_t> images(plans.size(), 0);
    for (const auto index : duplicateIndexes(kPlanningRule, plans, images)) {
      EXPECT_TRUE(actual.insert(plans[index]).second);
    }
    found += expected.size();
    EXPECT_EQ(actual, expected) << "round " << round << ", step " << step << ", base " << base;
    store.context.reset();
  }
  EXPECT_GT(found, 1000u);
}

}  // namespace
}  // namespace vantrel
