#include "widget/TodayUtils.h"

#include <gtest/gtest.h>

#include <ostream>

#include "platform/system/Device.h"

namespace vantrel {
namespace {

using Idiom = Device::UserInterfaceIdiom;
using Orientation = Device::Orientation;

struct Case {
  const char* version;
  Idiom idiom;
  Orientation orientation;
  Size screen;
  double iconMargin;
  bool twoColumns;
  Color text;
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.version << " " << c.iconMargin;
}

class TodayUtilsTest : public testing::TestWithParam<Case> {};

TEST_P(TodayUtilsTest, FollowsVersionAndDevice) {
  Device& device = Device::currentDevice();
  device.setSystemVersion(GetParam().version);
  device.setUserInterfaceIdiom(GetParam().idiom);
  device.setOrientation(GetParam().orientation);
  device.setScreenSize(GetParam().screen);
  EXPECT_EQ(TodayUtils::iconLeftMargin(), GetParam().iconMargin);
  EXPECT_FALSE(TodayUtils::shouldLayoutWithTwoColumns({{0, 0}, {600, 110}}));
  EXPECT_EQ(TodayUtils::shouldLayoutWithTwoColumns({{0, 0}, {600.5, 110}}), GetParam().twoColumns);
  const auto label = TodayUtils::textLabel();
  EXPECT_EQ(label->textColor(), GetParam().text);
  EXPECT_EQ(label->font(), Font::systemFontOfSize(15));
  EXPECT_TRUE(label->adjustsFontSizeToFitWidth());
  EXPECT_EQ(label->minimumScaleFactor(), 0.6666666666666666);
  EXPECT_EQ(TodayUtils::titleLabel()->font(), Font::boldSystemFontOfSize(15));
}

const Color kEither = Color::dynamicColor(Color::blackColor(), Color::whiteColor());
const Color kBlack = Color::blackColor();
const Color kWhite = Color::whiteColor();

// The system version is read once per process: ctest runs each case in a new one.
INSTANTIATE_TEST_SUITE_P(
    All, TodayUtilsTest,
    testing::Values(
        Case{"17.0", Idiom::kPad, Orientation::kPortrait, {736, 1024}, 8, false, kEither},
        Case{"12.1", Idiom::kPad, Orientation::kPortrait, {736, 1024}, 8, false, kBlack},
        Case{"9.3.5", Idiom::kPhone, Orientation::kPortrait, {414, 736}, 20, true, kWhite},
        Case{"9.3.5", Idiom::kPhone, Orientation::kLandscape, {736, 414}, 49, true, kWhite},
        Case{"9.3.5", Idiom::kPhone, Orientation::kPortrait, {375, 667}, 16, true, kWhite},
        Case{"9.3.5", Idiom::kPad, Orientation::kPortrait, {736, 1024}, 12, true, kWhite},
        Case{"8.4", Idiom::kPad, Orientation::kPortrait, {736, 1024}, 16, true, kWhite}));

}  // namespace
}  // namespace vantrel
