#include "today/reminders/ReminderSchedule.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

using std::chrono::minutes;

TEST(ReminderSchedule, ParsesLeadTimes) {
  const struct {
    const char* text;
    std::optional<std::vector<minutes>> expected;
  } cases[] = {
      {"off", std::vector<minutes>{}},
      {"30m", {{minutes(30)}}},
      {"1d,30m,2h", {{minutes(30), minutes(120), minutes(1440)}}},
      {"60m,1h", {{minutes(60)}}},
      {"7d", {{minutes(10080)}}},
      {"8d", {}},
      {"10081m", {}},
      {"0m", {}},
      {"-5m", {}},
      {"+5m", {}},
      {"2147483647d", {}},
      {"99999999999m", {}},
      {"", {}},
      {"30", {}},
      {"m", {}},
      {"30m,", {}},
      {",30m", {}},
      {"30mm", {}},
      {"1w", {}},
      {"30m,off", {}},
      {"30m, 1d", {}},
  };
  for (const auto& each : cases) EXPECT_EQ(parseLeadTimes(each.text), each.expected) << each.text;
}

TEST(ReminderSchedule, AnnouncesEachPlanOnce) {
  const auto at = [](int minute) { return Date(60.0 * minute); };
  const std::vector<minutes> half{minutes(30)};
  const std::vector<minutes> both{minutes(30), minutes(120)};
  const struct {
    const char* name;
    std::vector<PlannedShoot> plans;
    std::vector<minutes> leadTimes;
    std::vector<Reminder> shown;
    int now;
    std::vector<Reminder> due;
    std::optional<Date> next;
  } cases[] = {
      {"off", {{"a", at(1000)}}, {}, {}, 990, {}, {}},
      {"before", {{"a", at(1000)}}, half, {}, 969, {}, at(970)},
      {"at the instant", {{"a", at(1000)}}, half, {}, 970, {{"a", at(1000), minutes(30)}}, {}},
      {"late, shoot ahead", {{"a", at(1000)}}, half, {}, 999, {{"a", at(1000), minutes(30)}}, {}},
      {"shoot begins", {{"a", at(1000)}}, half, {}, 1000, {}, {}},
      {"shown", {{"a", at(1000)}}, half, {{"a", at(1000), minutes(30)}}, 980, {}, {}},
      {"shown, then moved later",
       {{"a", at(1020)}},
       half,
       {{"a", at(1000), minutes(30)}},
       980,
       {},
       at(990)},
      {"first of two", {{"a", at(1000)}}, both, {}, 880, {{"a", at(1000), minutes(120)}}, at(970)},
      {"second of two",
       {{"a", at(1000)}},
       both,
       {{"a", at(1000), minutes(120)}},
       970,
       {{"a", at(1000), minutes(30)}},
       {}},
      {"both slept through", {{"a", at(1000)}}, both, {}, 980, {{"a", at(1000), minutes(30)}}, {}},
      {"shorter was shown", {{"a", at(1000)}}, both, {{"a", at(1000), minutes(30)}}, 980, {}, {}},
      {"clock set back", {{"a", at(1000)}}, half, {{"a", at(1000), minutes(30)}}, 900, {}, {}},
      {"plans apart",
       {{"a", at(1000)}, {"b", at(1000)}, {"c", at(1100)}, {"d", at(1050)}},
       half,
       {{"a", at(1000), minutes(30)}},
       980,
       {{"b", at(1000), minutes(30)}},
       at(1020)},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const auto schedule =
        ReminderSchedule::compute(each.plans, each.leadTimes, each.shown, at(each.now));
    EXPECT_EQ(schedule.due, each.due);
    EXPECT_EQ(schedule.next, each.next);
  }
}

}  // namespace
}  // namespace vantrel
