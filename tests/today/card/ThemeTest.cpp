#include "today/card/Theme.h"

#include <gtest/gtest.h>

#include <cmath>

#include "appearance/Color+Constants.h"

namespace vantrel {
namespace {

QColor over(const QColor& top, const QColor& bottom) {
  const auto mix = [&](float a, float b) { return a * top.alphaF() + b * (1 - top.alphaF()); };
  return QColor::fromRgbF(mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
                          mix(top.blueF(), bottom.blueF()));
}

// Ratios of WebAIM's contrast checker.
TEST(Theme, ContrastRatioIsThatOfTheGuidelines) {
  EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 1e-9);
  EXPECT_NEAR(contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.005);
  EXPECT_NEAR(contrastRatio(QColor(0, 0, 255), QColor(255, 255, 0)), 8, 0.005);
}

TEST(Theme, EveryTextCanBeReadBeforeWhileAndAfterATouch) {
  for (const auto& [dark, least] :
       {std::pair(false, 4.5), {true, 4.5}, {false, 7.0}, {true, 7.0}}) {
    const Theme theme = Theme::forStyle(dark, least > 4.5);
    const QColor bar = over(theme.barFill, theme.card);
    const QColor untouched = dark ? Qt::white : Qt::black;
    const QColor held = theme.resolved(palette::vantrelYellow());
    const struct {
      const char* name;
      QColor text;
      QColor behind;
    } cases[] = {
        {"name", theme.name, theme.header},
        {"show more", theme.action, theme.header},
        {"bar", theme.barText, bar},
        {"retry", theme.action, bar},
        {"held row", held, theme.backingFor(held, untouched)},
    };
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(c.name) + (dark ? ", dark" : ", light"));
      ASSERT_TRUE(c.behind.isValid());
      EXPECT_GE(contrastRatio(c.text, c.behind), least);
    }
    // Touched rows stay white; black is the widget's text on systems that know no dark style.
    for (const QColor& text : {QColor(Qt::white), QColor(Qt::black)}) {
      const QColor backing = theme.backingFor(text, text);
      SCOPED_TRACE(text.name().toStdString() + (dark ? ", dark" : ", light"));
      EXPECT_GE(contrastRatio(text, backing.isValid() ? backing : theme.card), 4.5);
      EXPECT_EQ(backing.isValid(), text != untouched);
    }
    EXPECT_GE(contrastRatio(theme.focus, theme.card), 3) << "the ring is no text: 3:1";
  }
}

}  // namespace
}  // namespace vantrel
