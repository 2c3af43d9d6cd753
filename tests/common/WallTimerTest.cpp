#include "common/WallTimer.h"

#include <gtest/gtest.h>
#include <poll.h>

#include "common/Staleness.h"

namespace vantrel {
namespace {

bool becomesReadable(const WallTimer& timer, int milliseconds) {
  pollfd descriptor{timer.fileDescriptor(), POLLIN, 0};
  return poll(&descriptor, 1, milliseconds) == 1;
}

TEST(WallTimer, FiresOnceAtItsInstantOrAtOnceWhenThatHasPassed) {
  WallTimer timer;
  ASSERT_TRUE(timer.fireAt(systemNow().dateByAddingTimeInterval(3600)));
  EXPECT_FALSE(becomesReadable(timer, 0));
  EXPECT_EQ(timer.read(), WallTimer::Event::kNone);

  // The later instant takes the place of the earlier one.
  const Date soon = systemNow().dateByAddingTimeInterval(0.02);
  ASSERT_TRUE(timer.fireAt(soon));
  ASSERT_TRUE(becomesReadable(timer, 60000));
  EXPECT_GE(systemNow(), soon);
  EXPECT_EQ(timer.read(), WallTimer::Event::kReached);
  EXPECT_EQ(timer.read(), WallTimer::Event::kNone);

  for (const double passed : {-1e9, 0.0, 1e9}) {
    ASSERT_TRUE(timer.fireAt(Date::dateWithTimeIntervalSince1970(passed)));
    EXPECT_TRUE(becomesReadable(timer, 60000));
    EXPECT_EQ(timer.read(), WallTimer::Event::kReached) << passed;
  }
}

}  // namespace
}  // namespace vantrel
