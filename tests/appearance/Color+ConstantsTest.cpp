#include "appearance/Color+Constants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "platform/system/Device.h"

namespace vantrel::palette {
namespace {

void expectComponents(const Color& color, double red, double green, double blue, double alpha) {
  EXPECT_EQ(color.numberOfComponents(), 4);
  EXPECT_DOUBLE_EQ(color.red(), red);
  EXPECT_DOUBLE_EQ(color.green(), green);
  EXPECT_DOUBLE_EQ(color.blue(), blue);
  EXPECT_DOUBLE_EQ(color.alpha(), alpha);
}

TEST(Palette, HasTheFamilysColours) {
  struct Case {
    const char* name;
    std::function<Color()> plain;
    std::function<Color(double)> withAlpha;
    double red, green, blue;
  };
  // Levels of 255 from the family's table of colours.
  const Case cases[] = {
      {"menuBackground", menuBackgroundColor, {}, 31, 31, 31},
      {"menuButton", menuButtonColor, {}, 58, 58, 58},
      {"menuTextButton", menuTextButtonColor, {}, 146, 146, 146},
      {"panel", panelColor, {}, 40, 40, 40},
      {"switchBackground", switchBackgroundColor, {}, 103, 103, 103},
      {"searchBar", searchBarColor, {}, 82, 82, 82},
      {"light grey", vantrelLightGrayColor, vantrelLightGrayColorWithAlpha, 167, 167, 167},
      {"blue", vantrelBlue, vantrelBlueWithAlpha, 63, 197, 226},
      {"red", vantrelRed, vantrelRedWithAlpha, 250, 79, 16},
      {"yellow", vantrelYellow, vantrelYellowWithAlpha, 252, 217, 29},
      {"sun", {}, sunColorWithAlpha, 250, 219, 61},
      {"moon", {}, moonColorWithAlpha, 26, 174, 206},
      {"sunRise", sunRiseLineColor, sunRiseLineColorWithAlpha, 252, 217, 29},
      {"sunSet", sunSetLineColor, sunSetLineColorWithAlpha, 250, 79, 16},
      {"moonRise", moonRiseLineColor, moonRiseLineColorWithAlpha, 63, 197, 226},
      {"moonSet", moonSetLineColor, moonSetLineColorWithAlpha, 30, 52, 122},
      {"goldenHour", goldenHourLayerColor, goldenHourLayerColorWithAlpha, 250, 79, 16},
      {"civil", civilTwiligthLayerColor, civilTwiligthLayerColorWithAlpha, 27, 134, 251},
      {"nautical", nauticalTwilightLayerColor, nauticalTwilightLayerColorWithAlpha, 28, 73, 220},
      {"astronomical", astronomicalTwilightLayerColor, astronomicalTwilightLayerColorWithAlpha, 0,
       28, 158},
      {"old astronomical", oldAstronomicalTwilightLayerColor, {}, 30, 52, 152},
      {"night", nightLayerColor, nightLayerColorWithAlpha, 0, 0, 0},
      {"galactic rise", galacticCenterRiseLineColor, galacticCenterRiseLineColorWithAlpha, 146, 146,
       146},
      {"galactic set", galacticCenterSetLineColor, galacticCenterSetLineColorWithAlpha, 58, 58, 58},
      {"sunPath", sunPathColor, sunPathColorWithAlpha, 252, 217, 29},
      {"moonPath", moonPathColor, {}, 63, 197, 226},
      {"error text", timeWheelErrorTextColor, {}, 250, 79, 16},
      {"warning text", timeWheelWarningTextColor, {}, 252, 217, 29},
      {"hours", timeWheelHourSeparatorLineColor, timeWheelHourSeparatorLineColorWithAlpha, 45, 45,
       45},
      {"elevation", timeWheelElevetionSeparationLineColor,
       timeWheelElevetionSeparationLineColorWithAlpha, 45, 45, 45},
      {"day", timeWheelDayBackgroundColor, {}, 175, 241, 255},
      {"shadow sector", {}, shadowSectorColorWithAlpha, 12, 12, 12},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const double red = c.red / 255;
    const double green = c.green / 255;
    const double blue = c.blue / 255;
    if (c.plain) expectComponents(c.plain(), red, green, blue, 1);
    if (c.withAlpha) expectComponents(c.withAlpha(0.25), red, green, blue, 0.25);
  }
  EXPECT_EQ(shadowSectorColorWithAlpha(0.3F).alpha(), 0.30000001192092896);
  EXPECT_EQ(milkyWayColorWithAlpha(0.25), Color::colorWithWhite(1, 0.25));
  EXPECT_EQ(shadowColor(), Color::colorWithWhite(0, 0.5));
  for (const auto& white :
       {panelTextColor(), tableTextColor(), timeWheelTextColor(), milkyWayColor()}) {
    EXPECT_EQ(white, Color::colorWithWhite(1, 1));
  }
}

TEST(Palette, ComponentBackgroundFollowsTheStyleFromVersion13) {
  auto& device = Device::currentDevice();
  device.setSystemVersion("12.4");
  EXPECT_EQ(componentBackgroundColor().resolvedColor(true), Color::whiteColor());
  device.setSystemVersion("13.0");
  EXPECT_EQ(componentBackgroundColor().resolvedColor(true), Color::blackColor());
  EXPECT_EQ(componentBackgroundColor().resolvedColor(false).white(), 1);
}

// Expected values by Python's colorsys.rgb_to_hsv.
TEST(Palette, TurnsRgbIntoHsv) {
  struct Case {
    const char* name;
    double red, green, blue;
    Hsv hsv;
  };
  const Case cases[] = {
      {"black", 0, 0, 0, {0, 0, 0}},
      {"grey", 0.5, 0.5, 0.5, {0, 0, 0.5}},
      {"red", 1, 0, 0, {0, 1, 1}},
      {"yellow: red and green tie", 1, 1, 0, {60, 1, 1}},
      {"magenta: red and blue tie", 1, 0, 1, {300, 1, 1}},
      {"cyan: green and blue tie", 0, 1, 1, {180, 1, 1}},
      {"red with green below blue", 1, 0.25, 0.5, {340, 0.75, 1}},
      {"green", 0.2, 0.9, 0.1, {112.5, 0.888888888888889, 0.9}},
      {"blue", 0.25, 0.75, 0.875, {192, 0.7142857142857143, 0.875}},
      {"a hair below 360", 1, 0, 1e-19, {0, 1, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Hsv hsv = RGBtoHSV(c.red, c.green, c.blue);
    EXPECT_DOUBLE_EQ(hsv.hue, c.hsv.hue);
    EXPECT_DOUBLE_EQ(hsv.saturation, c.hsv.saturation);
    EXPECT_DOUBLE_EQ(hsv.value, c.hsv.value);
  }
  for (const double hue : {0.0, 2.0, -1e-17, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(Color::colorWithHue(hue, 1, 1, 1), Color::colorWithRed(1, 0, 0, 1)) << hue;
  }
  // By Python's colorsys.hsv_to_rgb(191/360, 0.72, 0.445).
  expectComponents(interpolatedMoonShadowColor(0.5), 0.1246, 0.38626, 0.445, 1);
}

TEST(Palette, CompositesOverBlackByARemainder) {
  struct Case {
    const char* name;
    Color color;
    double alpha;
    double red, green, blue, opacity;
  };
  // Expected values by Python's math.fmod.
  const Case cases[] = {
      {"half transparent white", Color::colorWithRed(1, 1, 1, 0.5), 0.25, 0.375, 0.375, 0.375,
       0.625},
      {"full components vanish", Color::colorWithRed(1, 0.5, 0.25, 1), 0, 0, 0.5, 0.25, 1},
      {"half shadow", Color::colorWithRed(0.8, 0.4, 0.2, 1), 0.5, 0.4, 0.2, 0.1, 1},
      {"transparent under full shadow", Color::colorWithRed(1, 1, 1, 0), 1, 0, 0, 0, 1},
      {"white level", Color::colorWithWhite(0.8, 1), 0.5, 0.4, 0.4, 0.4, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    expectComponents(shadowWithBlackColorWithAlpha(c.color, c.alpha), c.red, c.green, c.blue,
                     c.opacity);
  }
  EXPECT_EQ(shadowWithBlackColorWithAlpha(Color::colorWithRed(1, 1, 1, 0), 0), Color::blackColor());
}

TEST(Palette, ChangesInterpolatesAndTurnsGrey) {
  const Color start = Color::colorWithRed(1, 0.5, 0.25, 0.2);
  const Color end = Color::colorWithRed(0, 1, 0.75, 1);
  EXPECT_EQ(interpolateStartColor(start, end, 0, kInterpolatedAlpha), start);
  EXPECT_EQ(interpolateStartColor(start, end, 1, kInterpolatedAlpha), end);
  expectComponents(interpolateStartColor(start, end, 0.25, kInterpolatedAlpha), 0.75, 0.625, 0.375,
                   0.4);
  expectComponents(interpolateStartColor(start, end, 0.25, 0), 0.75, 0.625, 0.375, 0);
  expectComponents(interpolateStartColor(Color::blackColor(), Color::whiteColor(), 0.5, 1), 0.5,
                   0.5, 0.5, 1);

  expectComponents(toGrayScale(start), 0.621, 0.621, 0.621, 0.2);  // BT.601 luma
  EXPECT_EQ(toGrayScale(shadowColor()), shadowColor());
  EXPECT_EQ(colorByChangingAlphaTo(start, 0.7), Color::colorWithRed(1, 0.5, 0.25, 0.7));
  expectComponents(colorByChangingAlphaTo(shadowColor(), 1), 0, 0, 0, 1);
  EXPECT_EQ(getAlpha(start), 0.2);
  EXPECT_EQ(getAlpha(shadowColor()), 0.5);
}

}  // namespace
}  // namespace vantrel::palette
