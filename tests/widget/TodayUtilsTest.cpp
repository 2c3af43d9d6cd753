#include "widget/TodayUtils.h"

#include <gtest/gtest.h>

#include "platform/Device.h"
#include "time/DeviceSystemMajorVersion.h"

namespace vantrel {
namespace {

using Idiom = Device::UserInterfaceIdiom;
using Orientation = Device::Orientation;

// The system version is read once per process, hence a test for each.

TEST(TodayUtils, OnSystemVersion17) {
  ASSERT_EQ(DeviceSystemMajorVersion(), 17);
  EXPECT_FALSE(TodayUtils::shouldLayoutWithTwoColumns({{0, 0}, {700, 110}}));
  EXPECT_EQ(TodayUtils::iconLeftMargin(), 8);
  const auto label = TodayUtils::textLabel();
  EXPECT_EQ(label->textColor(), Color::dynamicColor(Color::blackColor(), Color::whiteColor()));
  EXPECT_EQ(label->font(), Font::systemFontOfSize(15));
  EXPECT_TRUE(label->adjustsFontSizeToFitWidth());
  EXPECT_EQ(label->minimumScaleFactor(), 0.6666666666666666);
  EXPECT_EQ(TodayUtils::titleLabel()->font(), Font::boldSystemFontOfSize(15));
}

TEST(TodayUtils, OnSystemVersion12LabelsAreBlackInEitherStyle) {
  Device::currentDevice().setSystemVersion("12.1");
  EXPECT_EQ(TodayUtils::textLabel()->textColor(), Color::blackColor());
}

TEST(TodayUtils, OnSystemVersion9) {
  Device& device = Device::currentDevice();
  device.setSystemVersion("9.3.5");
  ASSERT_EQ(DeviceSystemMajorVersion(), 9);
  EXPECT_EQ(TodayUtils::textLabel()->textColor(), Color::whiteColor());
  EXPECT_FALSE(TodayUtils::shouldLayoutWithTwoColumns({{0, 0}, {600, 110}}));
  EXPECT_TRUE(TodayUtils::shouldLayoutWithTwoColumns({{0, 0}, {600.5, 110}}));

  struct Case {
    const char* name;
    Idiom idiom;
    Orientation orientation;
    Size screen;
    double margin;
  };
  const Case cases[] = {
      {"large phone upright", Idiom::kPhone, Orientation::kPortrait, {414, 736}, 20},
      {"large phone on its side", Idiom::kPhone, Orientation::kLandscape, {736, 414}, 49},
      {"small phone", Idiom::kPhone, Orientation::kPortrait, {375, 667}, 16},
      {"tablet", Idiom::kPad, Orientation::kPortrait, {736, 1024}, 12},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    device.setUserInterfaceIdiom(c.idiom);
    device.setOrientation(c.orientation);
    device.setScreenSize(c.screen);
    EXPECT_EQ(TodayUtils::iconLeftMargin(), c.margin);
  }
}

TEST(TodayUtils, OnSystemVersion8TabletsHaveAWiderIconMargin) {
  Device::currentDevice().setSystemVersion("8.4");
  EXPECT_EQ(TodayUtils::iconLeftMargin(), 16);
}

}  // namespace
}  // namespace vantrel
