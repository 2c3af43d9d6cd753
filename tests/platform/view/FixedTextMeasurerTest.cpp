#include "platform/view/FixedTextMeasurer.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

// At size 10 a character is 5 wide and a line 12 high: the expected values are counted by hand.
TEST(FixedTextMeasurer, WrapsAtSpacesElseBetweenCharacters) {
  struct Case {
    const char* text;
    Size bounds;
    Size size;
  };
  const Case cases[] = {
      {"", {50, 1000}, {0, 0}},
      {"abcdefghij", {50, 1000}, {50, 12}},
      {"abcdefghij", {54.9, 1000}, {50, 12}},
      {"abcdefghij", {49.9, 1000}, {45, 24}},
      {"abcd efgh ij", {50, 1000}, {45, 24}},
      {"abcd efghijk", {50, 1000}, {35, 24}},
      {"abcdefghij   ", {50, 1000}, {50, 12}},
      {"ab abcdefghijabcdefghija c", {50, 1000}, {50, 48}},
      {"ab\n\ncd", {50, 1000}, {10, 36}},
      {"äöü 日本語 نجوم", {50, 1000}, {35, 24}},
      {"abc", {0, 1000}, {5, 36}},
      {"a b c d", {5, 30}, {5, 30}},
  };
  const FixedTextMeasurer measurer;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(measurer.boundingSizeOfText(c.text, Font::systemFontOfSize(10), c.bounds), c.size);
  }
  EXPECT_EQ(measurer.sizeOfText("日本語 ü", Font::systemFontOfSize(10)), (Size{25, 12}));
  EXPECT_EQ(measurer.sizeOfText("", Font::systemFontOfSize(10)), (Size{0, 12}));
}

}  // namespace
}  // namespace vantrel
