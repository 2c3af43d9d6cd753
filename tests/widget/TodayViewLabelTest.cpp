#include "widget/TodayViewLabel.h"

#include <gtest/gtest.h>

#include "support/WidgetTest.h"

namespace vantrel {
namespace {

using TodayViewLabelTest = test::WidgetTest;

TEST_F(TodayViewLabelTest, ReportsPhasesWithTheTagOfTheTouchOnceItIsOver) {
  std::vector<std::string> log;
  const auto record = [&log](const std::string& phase) {
    return [&log, phase](int tag) { log.push_back(phase + " " + std::to_string(tag)); };
  };
  const auto lifetime = std::make_shared<char>();
  auto label = std::make_unique<TodayViewLabel>();
  label->touchesEnded({});
  label->setTarget(lifetime, record("replaced"), TodayViewLabel::kTouchEnd);
  label->setTarget(lifetime, record("began"), 0);
  label->setTarget(lifetime, record("cancelled"), 1);
  label->setTarget(lifetime, record("ended"), 7);  // any other type is the end
  label->setTag(3);
  label->touchesBegan({});
  label->touchesMoved({});
  label->touchesEnded({});
  label->touchesCancelled({});
  EXPECT_TRUE(log.empty());
  label->setTag(4);
  label->setTarget(lifetime, record("later"), TodayViewLabel::kTouchEnd);
  label->setTarget(lifetime, {}, TodayViewLabel::kTouchCancelled);
  label->touchesCancelled({});
  // A target destroyed before the call is not called.
  auto briefly = std::make_shared<char>();
  label->setTarget(briefly, record("nobody"), TodayViewLabel::kTouchBegan);
  label->touchesBegan({});
  briefly.reset();
  label.reset();
  queue->runUntilEmpty();
  EXPECT_EQ(log, (std::vector<std::string>{"began 3", "ended 3", "cancelled 3"}));
}

}  // namespace
}  // namespace vantrel
