#include "appearance/Color+Constants.h"

#include <gtest/gtest.h>

#include "platform/Device.h"

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
    Color color;
    double red, green, blue;
    double alpha = 1;
  };
  // Levels of 255 from the family's table of colours.
  const Case cases[] = {
      {"menuBackground", menuBackgroundColor(), 31, 31, 31},
      {"menuButton", menuButtonColor(), 58, 58, 58},
      {"menuTextButton", menuTextButtonColor(), 146, 146, 146},
      {"panel", panelColor(), 40, 40, 40},
      {"switchBackground", switchBackgroundColor(), 103, 103, 103},
      {"searchBar", searchBarColor(), 82, 82, 82},
      {"vantrelLightGray", vantrelLightGrayColorWithAlpha(0.25), 167, 167, 167, 0.25},
      {"vantrelBlue", vantrelBlueWithAlpha(0.25), 63, 197, 226, 0.25},
      {"vantrelRed", vantrelRedWithAlpha(0.25), 250, 79, 16, 0.25},
      {"vantrelYellow", vantrelYellowWithAlpha(0.25), 252, 217, 29, 0.25},
      {"sun", sunColorWithAlpha(0.25), 250, 219, 61, 0.25},
      {"moon", moonColorWithAlpha(0.25), 26, 174, 206, 0.25},
      {"sunRiseLine", sunRiseLineColorWithAlpha(0.25), 252, 217, 29, 0.25},
      {"sunSetLine", sunSetLineColorWithAlpha(0.25), 250, 79, 16, 0.25},
      {"moonRiseLine", moonRiseLineColorWithAlpha(0.25), 63, 197, 226, 0.25},
      {"moonSetLine", moonSetLineColorWithAlpha(0.25), 30, 52, 122, 0.25},
      {"goldenHourLayer", goldenHourLayerColorWithAlpha(0.25), 250, 79, 16, 0.25},
      {"civilTwilight", civilTwiligthLayerColorWithAlpha(0.25), 27, 134, 251, 0.25},
      {"nauticalTwilight", nauticalTwilightLayerColorWithAlpha(0.25), 28, 73, 220, 0.25},
      {"astronomicalTwilight", astronomicalTwilightLayerColorWithAlpha(0.25), 0, 28, 158, 0.25},
      {"oldAstronomicalTwilight", oldAstronomicalTwilightLayerColor(), 30, 52, 152},
      {"nightLayer", nightLayerColorWithAlpha(0.25), 0, 0, 0, 0.25},
      {"galacticCenterRise", galacticCenterRiseLineColorWithAlpha(0.25), 146, 146, 146, 0.25},
      {"galacticCenterSet", galacticCenterSetLineColorWithAlpha(0.25), 58, 58, 58, 0.25},
      {"sunPath", sunPathColorWithAlpha(0.25), 252, 217, 29, 0.25},
      {"moonPath", moonPathColor(), 63, 197, 226},
      {"timeWheelErrorText", timeWheelErrorTextColor(), 250, 79, 16},
      {"timeWheelWarningText", timeWheelWarningTextColor(), 252, 217, 29},
      {"hourSeparator", timeWheelHourSeparatorLineColorWithAlpha(0.25), 45, 45, 45, 0.25},
      {"elevation", timeWheelElevetionSeparationLineColorWithAlpha(0.25), 45, 45, 45, 0.25},
      {"timeWheelDayBackground", timeWheelDayBackgroundColor(), 175, 241, 255},
      {"shadowSector", shadowSectorColorWithAlpha(0.3F), 12, 12, 12, 0.30000001192092896},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    expectComponents(c.color, c.red / 255, c.green / 255, c.blue / 255, c.alpha);
  }
  for (const auto& white :
       {panelTextColor(), tableTextColor(), timeWheelTextColor(), milkyWayColor()}) {
    EXPECT_EQ(white, Color::colorWithWhite(1, 1));
  }
  EXPECT_EQ(milkyWayColorWithAlpha(0.25), Color::colorWithWhite(1, 0.25));
  EXPECT_EQ(shadowColor(), Color::colorWithWhite(0, 0.5));
}

TEST(Palette, PlainConstructorsAreTheOpaqueForms) {
  const std::pair<Color, Color> pairs[] = {
      {vantrelLightGrayColor(), vantrelLightGrayColorWithAlpha(1)},
      {vantrelBlue(), vantrelBlueWithAlpha(1)},
      {vantrelRed(), vantrelRedWithAlpha(1)},
      {vantrelYellow(), vantrelYellowWithAlpha(1)},
      {sunRiseLineColor(), sunRiseLineColorWithAlpha(1)},
      {sunSetLineColor(), sunSetLineColorWithAlpha(1)},
      {moonRiseLineColor(), moonRiseLineColorWithAlpha(1)},
      {moonSetLineColor(), moonSetLineColorWithAlpha(1)},
      {goldenHourLayerColor(), goldenHourLayerColorWithAlpha(1)},
      {civilTwiligthLayerColor(), civilTwiligthLayerColorWithAlpha(1)},
      {nauticalTwilightLayerColor(), nauticalTwilightLayerColorWithAlpha(1)},
      {astronomicalTwilightLayerColor(), astronomicalTwilightLayerColorWithAlpha(1)},
      {nightLayerColor(), nightLayerColorWithAlpha(1)},
      {galacticCenterRiseLineColor(), galacticCenterRiseLineColorWithAlpha(1)},
      {galacticCenterSetLineColor(), galacticCenterSetLineColorWithAlpha(1)},
      {sunPathColor(), sunPathColorWithAlpha(1)},
      {timeWheelHourSeparatorLineColor(), timeWheelHourSeparatorLineColorWithAlpha(1)},
      {timeWheelElevetionSeparationLineColor(), timeWheelElevetionSeparationLineColorWithAlpha(1)},
  };
  for (const auto& [plain, opaque] : pairs) {
    SCOPED_TRACE(&plain - &pairs[0].first);
    EXPECT_EQ(plain, opaque);
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
      {"the blue",
       63 / 255.0,
       197 / 255.0,
       226 / 255.0,
       {190.6748466257669, 0.7212389380530974, 0.8862745098039215}},
      {"a hair below 360", 1, 0, 1e-19, {0, 1, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Hsv hsv = RGBtoHSV(c.red, c.green, c.blue);
    EXPECT_DOUBLE_EQ(hsv.hue, c.hsv.hue);
    EXPECT_DOUBLE_EQ(hsv.saturation, c.hsv.saturation);
    EXPECT_DOUBLE_EQ(hsv.value, c.hsv.value);
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
