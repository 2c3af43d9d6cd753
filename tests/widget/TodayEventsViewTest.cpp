#include "widget/TodayEventsView.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "appearance/Color+Constants.h"
#include "base/Iso8601.h"
#include "platform/system/Device.h"
#include "support/WidgetTest.h"
#include "time/DeviceSystemMajorVersion.h"

namespace vantrel {
namespace {

using Lines = std::vector<std::string>;

std::string describe(const Label& label) {
  std::ostringstream text;
  const Rect& frame = label.frame();
  text << frame.origin.x << "," << frame.origin.y << " " << frame.size.width << "x"
       << frame.size.height;
  return text.str();
}

/// Describes the visible labels, a line for each row, and the reported height.
Lines describe(const TodayEventsView& view) {
  Lines lines;
  if (!view.messageLabel().isHidden()) {
    lines.push_back(describe(view.messageLabel()) + " " + view.messageLabel().text());
  }
  for (std::size_t row = 0; row < TodayEventsView::kRowCount; ++row) {
    const TodayViewLabel& title = *view.planTitleLabels()[row];
    const TodayViewLabel& date = *view.planDateLabels()[row];
    EXPECT_EQ(title.isHidden(), date.isHidden());
    if (title.isHidden()) continue;
    lines.push_back(describe(title) + ", " + describe(date) + " " + title.text());
    EXPECT_EQ(date.text(), "21/06/2024 05:30");
  }
  lines.push_back("height " + (std::ostringstream() << view.contentHeight()).str());
  return lines;
}

class TodayEventsViewTest : public test::WidgetTest {
 protected:
  TodayEventsView::Plans plans(const std::vector<std::string>& names) {
    std::vector<std::shared_ptr<Planning>> list;
    for (const auto& name : names) list.push_back(add(name, date, "Europe/Madrid"));
    return list;
  }

  const Date date = dateFromIso8601String("2024-06-21T03:30:00Z").value();
  // With fixed metrics a character is 7.5 wide and a line 18 high at size 15: 36 characters fit
  // into the 272 of a card 320 wide. All frames below were computed by hand.
  const std::string twoLines = "Milky Way over the old lighthouse at the cape";
  const std::string threeLines = twoLines + ", then the dunes to the south of it";
};

TEST_F(TodayEventsViewTest, LaysOutRows) {
  struct Case {
    const char* name;
    bool expanded;
    std::vector<std::string> titles;
    Lines lines;
  };
  const Lines noPlans = {"37,12 272x18 No plans scheduled", "height 38"};
  const Case cases[] = {
      {"compact shows two of three",
       false,
       {"Sunrise", "Moon", "Perseids"},
       {"37,8 272x18, 37,31 272x18 Sunrise", "37,57 272x18, 37,80 272x18 Moon", "height 126"}},
      {"expanded shows all, long titles in two lines",
       true,
       {twoLines, threeLines, "Moon"},
       {"37,12 272x36, 37,53 272x18 " + twoLines, "37,83 272x36, 37,124 272x18 " + threeLines,
        "37,154 272x18, 37,177 272x18 Moon", "height 215"}},
      {"no more than five rows",
       true,
       {"1", "2", "3", "4", "5", "6"},
       {"37,12 272x18, 37,35 272x18 1", "37,65 272x18, 37,88 272x18 2",
        "37,118 272x18, 37,141 272x18 3", "37,171 272x18, 37,194 272x18 4",
        "37,224 272x18, 37,247 272x18 5", "height 285"}},
      {"no plans", true, {}, noPlans},
  };
  TodayEventsView view(Rect{{0, 0}, {320, 110}});
  EXPECT_FALSE(view.showExpanded());
  view.setMarginInsets({0, 37, 39, 0});
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    view.setShowExpanded(c.expanded);
    view.updateData(plans(c.titles));
    EXPECT_EQ(describe(view), c.lines);
  }
  view.updateData(std::nullopt);
  EXPECT_EQ(describe(view), noPlans) << "nullopt is shown like an empty list";

  view.setFrame({{0, 0}, {700, 110}});
  view.updateData(plans({"Sunrise", "Moon", "3", "4", "5"}));
  EXPECT_EQ(describe(view).back(), "height 285") << "one column at any width";
}

TEST_F(TodayEventsViewTest, LaysOutTwoColumnsBeforeVersion10) {
  Device::currentDevice().setSystemVersion("9.3");
  ASSERT_EQ(DeviceSystemMajorVersion(), 9);
  TodayEventsView view(Rect{{0, 0}, {700, 110}});
  EXPECT_TRUE(view.showExpanded());
  view.updateData(plans({"Sunrise", "Moon", "Perseids", threeLines, "Blue hour"}));
  EXPECT_EQ(describe(view),
            (Lines{"0,12 344.5x18, 0,35 344.5x18 Sunrise", "0,65 344.5x18, 0,88 344.5x18 Moon",
                   "0,118 344.5x18, 0,141 344.5x18 Perseids",
                   "344.5,12 344.5x36, 344.5,53 344.5x18 " + threeLines,
                   "344.5,83 344.5x18, 344.5,106 344.5x18 Blue hour", "height 179"}));

  // Old systems have the compact mode too.
  view.setMarginInsets({0, 37, 0, 0});
  view.setShowExpanded(false);
  EXPECT_EQ(describe(view), (Lines{"37,8 307.5x18, 37,31 307.5x18 Sunrise",
                                   "37,57 307.5x18, 37,80 307.5x18 Moon", "height 126"}));
  view.setShowExpanded(true);
  EXPECT_EQ(view.planTitleLabels()[3]->frame().origin, (Point{381.5, 12}));

  view.setFrame({{0, 0}, {600, 110}});
  view.layoutIfNeeded();
  EXPECT_EQ(view.planTitleLabels()[3]->frame().origin, (Point{37, 171}));
}

TEST_F(TodayEventsViewTest, ShowsDatesInThePlansOwnZone) {
  struct Case {
    const char* name;
    std::optional<Date> date;
    std::optional<std::string> zone;
    const char* text;
  };
  // By `TZ=… date -d 2024-06-21T03:30Z`; the device is in Kathmandu.
  const Case cases[] = {
      {"Tokyo", date, "Asia/Tokyo", "21/06/2024 12:30"},
      {"none", date, std::nullopt, "21/06/2024 09:15"},
      {"the day before", date, "America/Los_Angeles", "20/06/2024 20:30"},
      {"unknown", date, "Nowhere/Nope", "21/06/2024 09:15"},
      {"no date", std::nullopt, "Asia/Tokyo", ""},
  };
  TodayEventsView view(Rect{{0, 0}, {320, 110}});
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    view.updateData(std::vector{add(std::nullopt, c.date, c.zone)});
    EXPECT_EQ(view.planDateLabels()[0]->text(), c.text);
    EXPECT_EQ(view.planTitleLabels()[0]->text(), "");
  }
  EXPECT_EQ(view.contentHeight(), 12 + 5 + 12 + 8) << "empty texts have no height";
}

struct RecordingDelegate : TodayViewDelegate {
  void todayViewDidTapOnView(TodayEventsView& /*view*/, int type, int index) override {
    taps.emplace_back(type, index);
    if (onTap) onTap();
  }
  std::vector<std::pair<int, int>> taps;
  std::function<void()> onTap;
};

TEST_F(TodayEventsViewTest, HighlightsWhileTouchedAndReportsTaps) {
  TodayEventsView view(Rect{{0, 0}, {320, 110}});
  const auto delegate = std::make_shared<RecordingDelegate>();
  view.setDelegate(delegate);
  view.updateData(plans({"Sunrise", "Moon"}));
  TodayViewLabel& titleLabel = *view.planTitleLabels()[1];
  TodayViewLabel& dateLabel = *view.planDateLabels()[1];
  const auto expectColor = [&](const Color& color) {
    EXPECT_EQ(titleLabel.textColor(), color);
    EXPECT_EQ(dateLabel.textColor(), color);
  };

  titleLabel.touchesBegan({});
  queue->runUntilEmpty();
  view.takeNeedsDisplay();
  expectColor(palette::vantrelYellow());
  titleLabel.touchesCancelled({});
  queue->runUntilEmpty();
  EXPECT_TRUE(view.takeNeedsDisplay());
  expectColor(Color::whiteColor());

  dateLabel.touchesBegan({});
  dateLabel.touchesEnded({});
  queue->runUntilEmpty();
  expectColor(Color::whiteColor());
  EXPECT_EQ(delegate->taps, (std::vector<std::pair<int, int>>{{3, 1}}));
  EXPECT_NE(view.planTitleLabels()[0]->textColor(), Color::whiteColor());

  titleLabel.setTag(-1);
  titleLabel.touchesBegan({});
  titleLabel.setTag(5);
  titleLabel.touchesBegan({});
  queue->runUntilEmpty();
  expectColor(Color::whiteColor());
}

TEST_F(TodayEventsViewTest, MayBeDestroyedDuringTouchesAndInsideATap) {
  const auto delegate = std::make_shared<RecordingDelegate>();
  auto view = std::make_unique<TodayEventsView>(Rect{{0, 0}, {320, 110}});
  view->setDelegate(delegate);
  view->planTitleLabels()[0]->touchesEnded({});
  view.reset();
  queue->runUntilEmpty();
  EXPECT_TRUE(delegate->taps.empty());

  view = std::make_unique<TodayEventsView>(Rect{{0, 0}, {320, 110}});
  view->setDelegate(delegate);
  delegate->onTap = [&] { view.reset(); };
  view->planTitleLabels()[0]->touchesEnded({});
  queue->runUntilEmpty();
  EXPECT_EQ(delegate->taps.size(), 1U);
}

}  // namespace
}  // namespace vantrel
