#include "platform/system/SerialMainQueue.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace vantrel {
namespace {

TEST(SerialMainQueue, RunsInOrderNeverInsideTheCallAndForOtherThreads) {
  SerialMainQueue queue;
  std::vector<int> order;
  queue.async([&] {
    order.push_back(1);
    queue.async([&] { order.push_back(3); });
    order.push_back(2);
  });
  EXPECT_TRUE(order.empty());
  queue.runUntilEmpty();
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
  EXPECT_FALSE(queue.runNext(0));

  constexpr int kThreads = 4;
  constexpr int kFunctions = 500;
  int sum = 0;  // only ever touched by the main thread
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < kFunctions; ++j) queue.async([&sum] { ++sum; });
    });
  }
  for (int i = 0; i < kThreads * kFunctions; ++i) ASSERT_TRUE(queue.runNext(60));
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(sum, kThreads * kFunctions);
}

}  // namespace
}  // namespace vantrel
