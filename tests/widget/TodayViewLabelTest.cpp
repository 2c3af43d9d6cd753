#include "widget/TodayViewLabel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/WidgetTest.h"

namespace vantrel {
namespace {

using Log = std::vector<std::string>;

class TodayViewLabelTest : public test::WidgetTest {
 protected:
  TodayViewLabel::Action record(const std::string& phase) {
    return [this, phase](int tag) { log.push_back(phase + " " + std::to_string(tag)); };
  }

  std::shared_ptr<void> lifetime = std::make_shared<char>();
  std::unique_ptr<TodayViewLabel> label = std::make_unique<TodayViewLabel>();
  Log log;
};

TEST_F(TodayViewLabelTest, ReportsPhasesWithTheTagOfTheTouchOnceItIsOver) {
  label->setTarget(lifetime, record("replaced"), TodayViewLabel::kTouchEnd);
  label->setTarget(lifetime, record("began"), 0);
  label->setTarget(lifetime, record("cancelled"), 1);
  label->setTarget(lifetime, record("ended"), 7);  // any other type is the end
  label->setTag(3);
  label->touchesBegan({});
  label->touchesMoved({});
  label->touchesEnded({});
  label->touchesCancelled({});
  EXPECT_EQ(log, Log{});
  label->setTag(4);
  label->setTarget(lifetime, record("later"), TodayViewLabel::kTouchEnd);
  label.reset();
  queue->runUntilEmpty();
  EXPECT_EQ(log, (Log{"began 3", "ended 3", "cancelled 3"}));
}

TEST_F(TodayViewLabelTest, StaysSilentWithoutALivingTargetOrAnAction) {
  label->setTarget(lifetime, record("began"), TodayViewLabel::kTouchBegan);
  label->setTarget(lifetime, {}, TodayViewLabel::kTouchCancelled);
  label->touchesBegan({});
  label->touchesCancelled({});
  label->touchesEnded({});
  lifetime.reset();
  label->touchesBegan({});
  queue->runUntilEmpty();
  EXPECT_EQ(log, Log{}) << "a target destroyed before delivery hears nothing";
}

}  // namespace
}  // namespace vantrel
