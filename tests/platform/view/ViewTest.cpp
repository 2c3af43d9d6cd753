#include "platform/view/View.h"

#include <gtest/gtest.h>

#include "platform/view/Label.h"

namespace vantrel {
namespace {

struct CountingView : View {
  using View::View;
  void layoutSubviews() override { ++layouts; }
  int layouts = 0;
};

TEST(View, StretchesFlexibleSubviewsAndLaysOutWhatChangedSize) {
  CountingView root(Rect{{0, 0}, {320, 110}});
  CountingView flexible(Rect{{10, 0}, {300, 50}});
  CountingView fixed(Rect{{0, 60}, {300, 50}});
  flexible.setAutoresizingMask(View::kFlexibleWidth);
  root.addSubview(flexible);
  root.addSubview(fixed);
  root.layoutIfNeeded();
  root.layoutIfNeeded();
  EXPECT_EQ(root.layouts, 1);

  root.setFrame({{0, 0}, {400, 300}});
  root.layoutIfNeeded();
  EXPECT_EQ(flexible.frame(), (Rect{{10, 0}, {380, 50}}));
  EXPECT_EQ(fixed.frame(), (Rect{{0, 60}, {300, 50}}));
  EXPECT_EQ(root.layouts, 2);
  EXPECT_EQ(flexible.layouts, 2);
  EXPECT_EQ(fixed.layouts, 1);

  root.setFrame({{5, 5}, {400, 300}});
  root.layoutIfNeeded();
  EXPECT_EQ(root.layouts, 2) << "a move needs no layout";
}

TEST(View, TellsOnceWhenSomethingBelowNeedsDisplay) {
  View root;
  Label first;
  Label second;
  root.addSubview(first);
  root.addSubview(second);
  EXPECT_TRUE(root.takeNeedsDisplay());
  EXPECT_FALSE(root.takeNeedsDisplay());

  first.setText("Perseids");
  second.setTextColor(Color::whiteColor());
  EXPECT_TRUE(root.takeNeedsDisplay());
  EXPECT_FALSE(root.takeNeedsDisplay());
  first.setText("Perseids");
  EXPECT_FALSE(root.takeNeedsDisplay());
  second.setHidden(true);
  EXPECT_TRUE(root.takeNeedsDisplay());
}

}  // namespace
}  // namespace vantrel
