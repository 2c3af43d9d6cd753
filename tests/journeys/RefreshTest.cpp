#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/Iso8601.h"
#include "platform/system/Device.h"
#include "platform/view/FixedTextMeasurer.h"
#include "support/TestStore.h"
#include "support/WidgetTest.h"
#include "widget/TodayEventsViewController.h"

namespace vantrel {
namespace {

using Names = std::vector<std::string>;

/// A host that records the widget's requests.
struct RecordingContext : ExtensionContext {
  bool respondsToWidgetLargestAvailableDisplayMode() const override { return knowsModes; }
  void setWidgetLargestAvailableDisplayMode(WidgetDisplayMode mode) override { largest = mode; }
  void openURL(const std::string& url, std::function<void(bool)> completionHandler) override {
    EXPECT_FALSE(completionHandler);
    opened.push_back(url);
  }
  bool knowsModes = true;
  std::optional<WidgetDisplayMode> largest;
  std::vector<std::string> opened;
};

Date at(const std::string& text) {
  return dateFromIso8601String(text).value();
}

class RefreshTest : public test::WidgetTest {
 protected:
  ~RefreshTest() override { TextMeasurer::install(nullptr); }

  /// Creates and shows a widget like hosts do.
  std::unique_ptr<TodayEventsViewController> begin() {
    auto controller =
        std::make_unique<TodayEventsViewController>(Size{320, 110}, std::shared_ptr(context));
    controller->loadViewIfNeeded();
    controller->viewWillAppear(false);
    controller->viewDidAppear(false);
    std::optional<WidgetUpdateResult> result;
    controller->widgetPerformUpdateWithCompletionHandler([&](auto update) { result = update; });
    EXPECT_EQ(result, WidgetUpdateResult::kNewData);
    return controller;
  }

  static Names visibleTitles(const TodayEventsViewController& controller) {
    Names names;
    for (const auto& label : controller.todayView()->planTitleLabels()) {
      if (!label->isHidden()) names.push_back(label->text());
    }
    return names;
  }

  void tap(const TodayEventsViewController& controller, std::size_t row) {
    TodayViewLabel& label = *controller.todayView()->planTitleLabels()[row];
    label.touchesBegan({});
    label.touchesEnded({});
    queue->runUntilEmpty();
  }

  test::EnvironmentGuard madrid{"TZ", "Europe/Madrid"};
  test::FakeClock clock{at("2024-06-21T12:00:00Z")};  // 14:00 in Madrid
  std::shared_ptr<RecordingContext> context = std::make_shared<RecordingContext>();
};

TEST_F(RefreshTest, ListsTheNextFivePlansFromTheStartOfTheDay) {
  add("later", at("2024-06-25T00:00:00Z"));
  add("yesterday 23:59", at("2024-06-20T21:59:00Z"));
  add("today 00:30", at("2024-06-20T22:30:00Z"));
  add("midnight", at("2024-06-20T22:00:00Z"), "Asia/Tokyo");
  add("tomorrow", at("2024-06-22T10:00:00Z"));
  add("without date", std::nullopt);
  add("too late", at("2025-01-01T00:00:00Z"));
  add("next week", at("2024-06-28T10:00:00Z"));
  save();

  const auto controller = begin();
  EXPECT_EQ(visibleTitles(*controller), (Names{"midnight", "today 00:30"}));
  EXPECT_EQ(controller->plans()->size(), 5U);
  EXPECT_EQ(context->largest, WidgetDisplayMode::kExpanded);

  controller->widgetActiveDisplayModeDidChange(WidgetDisplayMode::kExpanded, {320, 600});
  const Names all{"midnight", "today 00:30", "tomorrow", "later", "next week"};
  EXPECT_EQ(visibleTitles(*controller), all);
  EXPECT_EQ(controller->preferredContentSize(), (Size{320, 285}));
  controller->view()->setFrame({{0, 0}, {400, 285}});
  controller->view()->layoutIfNeeded();
  EXPECT_EQ(controller->todayView()->planTitleLabels()[0]->frame().size.width, 400 - 37 - 11);

  controller->widgetActiveDisplayModeDidChange(WidgetDisplayMode::kCompact, {320, 110.5});
  EXPECT_EQ(visibleTitles(*controller), (Names{"midnight", "today 00:30"}));
  EXPECT_EQ(controller->preferredContentSize(), (Size{320, 110.5}));
}

TEST_F(RefreshTest, OpensTheTappedPlan) {
  for (const char* name : {"1", "2", "3", "4"}) {
    add(name, at("2024-06-2" + std::string(name) + "T12:00:00Z"));
  }
  save();
  const auto controller = begin();
  controller->widgetActiveDisplayModeDidChange(WidgetDisplayMode::kExpanded, {320, 600});
  tap(*controller, 3);

  const std::string uuid = test::sqlite(storeFile(), "SELECT Z_UUID FROM Z_METADATA");
  const std::string key = test::sqlite(storeFile(), "SELECT Z_PK FROM ZPLANNING WHERE ZNAME = '4'");
  const std::string link = "vantrel://plan?id=x-coredata:%2F%2F" + uuid + "%2FPlanning%2Fp" + key;
  EXPECT_EQ(context->opened, Names{link});

  controller->todayViewDidTapOnView(*controller->todayView(), 3, -1);
  tap(*controller, 4);  // a row that shows no plan
  EXPECT_EQ(context->opened, Names{link});
}

TEST_F(RefreshTest, OnlyANewControllerSeesANewDay) {
  add("today", at("2024-06-21T20:00:00Z"));
  add("tomorrow", at("2024-06-22T20:00:00Z"));
  save();
  auto controller = begin();
  EXPECT_EQ(visibleTitles(*controller), (Names{"today", "tomorrow"}));

  clock.set(at("2024-06-21T22:00:00Z"));  // midnight in Madrid
  controller->viewWillAppear(false);
  EXPECT_EQ(visibleTitles(*controller), (Names{"today", "tomorrow"}));
  controller = begin();
  EXPECT_EQ(visibleTitles(*controller), Names{"tomorrow"});
}

/// Texts have the height that makes the view's content 171.9 high.
struct FractionalMeasurer : FixedTextMeasurer {
  Size boundingSizeOfText(std::string_view, const Font&, Size bounds) const override {
    return {bounds.width, 151.9};
  }
};

TEST_F(RefreshTest, ShowsThatThereAreNoPlansAndPrefersWholePixels) {
  TextMeasurer::install(std::make_shared<FractionalMeasurer>());
  save();
  const auto controller = begin();
  EXPECT_TRUE(controller->plans() && controller->plans()->empty());
  EXPECT_EQ(controller->todayView()->messageLabel().text(), "No plans scheduled");

  controller->widgetActiveDisplayModeDidChange(WidgetDisplayMode::kExpanded, {320, 600});
  EXPECT_EQ(controller->preferredContentSize(), (Size{320, 171}));
  controller->setPreferredContentSize({1, controller->todayView()->contentHeight()});
  controller->todayViewDidLayout();
  EXPECT_EQ(controller->preferredContentSize().width, 1)
      << "an equal height does not change the size";
  controller->setPreferredContentSize({1, 171});
  controller->todayViewDidLayout();
  EXPECT_EQ(controller->preferredContentSize().width, 320);
}

TEST_F(RefreshTest, IsExpandedWithoutInsetsBeforeVersion10) {
  Device::currentDevice().setSystemVersion("9.0");
  context->knowsModes = false;
  for (const char* day : {"21", "22", "23"}) {
    add(day, at("2024-06-" + std::string(day) + "T20:00:00Z"));
  }
  save();
  const auto controller = begin();
  EXPECT_FALSE(context->largest);
  EXPECT_EQ(visibleTitles(*controller), (Names{"21", "22", "23"}));
  EXPECT_EQ(controller->todayView()->planTitleLabels()[0]->frame().origin, (Point{0, 12}));
}

TEST_F(RefreshTest, AYearOfMidnightsMissesNoDayAndLeaksNoMemory) {
  constexpr int kDays = 366;
  constexpr int kSettled = 60;
  const auto instant = [](double days) {
    return at("2024-01-01T00:00:00Z").dateByAddingTimeInterval(days * 86400);
  };
  add("day 0", instant(0.5));
  save();
  test::OpenStore planner(storeFile());
  std::size_t settled = 0;
  std::string missed;
  for (int day = 0; day < kDays; ++day) {
    const test::EnvironmentGuard travelled("TZ", day / 7 % 2 == 0 ? "Europe/Madrid" : "Asia/Tokyo");
    const std::string name = "day " + std::to_string(day);
    // Another program adds a plan for the next day and deletes an old one.
    planner.insertPlan("day " + std::to_string(day + 1), 0)->setDate(instant(day + 1.5));
    if (const auto old = planner.planNamed("day " + std::to_string(day - 3))) {
      planner.context.deleteObject(old);
    }
    ASSERT_TRUE(planner.context.save());
    // After midnight, and once more after waking up at noon.
    for (const double part : {0.0, 0.5}) {
      clock.set(instant(day + part));
      const auto titles = visibleTitles(*begin());
      if (std::find(titles.begin(), titles.end(), name) == titles.end()) missed += name + " ";
    }
    if (day == kSettled) settled = ::mallinfo2().uordblks;
  }
  EXPECT_EQ(missed, "");
  const std::size_t atEnd = ::mallinfo2().uordblks;
  RecordProperty("bytesAfter60Days", std::to_string(settled));
  RecordProperty("bytesAfterAYear", std::to_string(atEnd));
  EXPECT_LE(atEnd, settled + 8 * 1024);
}

}  // namespace
}  // namespace vantrel
