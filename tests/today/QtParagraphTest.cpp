#include "platform/qt/QtParagraph.h"

#include <gtest/gtest.h>

#include <QFont>

#include "platform/qt/QtTextMeasurer.h"
#include "today/Application.h"

namespace vantrel {
namespace {

TEST(QtParagraph, LineEndsBreakAndOtherControlCharactersAreSpaces) {
  const struct {
    std::string text;
    QString shown;
  } cases[] = {
      {"a\nb\r\nc\rd", "a\u2028b\u2028c\u2028d"},
      {"a\tb\x01"
       "c\x7f"
       "d",
       "a b c d"},
      {"<b>&amp;</b>", "<b>&amp;</b>"},
      {"\xff"
       "a",
       "\ufffda"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(QtParagraph::textToShow(c.text), c.shown);
}

TEST(QtParagraph, BreaksAndCutsLikeItIsMeasured) {
  test::needApplication();
  const QtTextMeasurer measurer;
  const Font font = Font::boldSystemFontOfSize(15);
  const Size line = measurer.sizeOfText(test::kLongTitle, font);
  EXPECT_EQ(measurer.sizeOfText("", font).height, line.height);
  EXPECT_EQ(measurer.boundingSizeOfText("", font, {200, 1000}), Size());
  EXPECT_GT(measurer.boundingSizeOfText(test::kLongTitle, font, {200, 1000}).height,
            2 * line.height);
  EXPECT_EQ(measurer.boundingSizeOfText(test::kLongTitle, font, {200, 30}).height, 30);

  QtParagraph paragraph(test::kLongTitle, measurer.fontFor(font));
  EXPECT_EQ(paragraph.lineCount(), 1);
  paragraph.breakLines(200);
  EXPECT_GT(paragraph.lineCount(), 2);
  paragraph.breakLines(200, 2);
  EXPECT_EQ(paragraph.lineCount(), 2);
  EXPECT_LE(paragraph.width(), 200);
}

TEST(QtParagraph, DirectionsThatATextSetsEndWithIt) {
  const struct {
    const char* text;
    const char* shown;
  } cases[] = {
      {"left as it is \u05D0", "left as it is \u05D0"},
      {"\u2066its \u202Eown\u2069 affair", "\u2066its \u202Eown\u2069 affair"},
      {"a\u202Eb", "\u2068a\u202Eb\u2069"},
      {"closes\u2069 what is not its own\u202E", "\u2068closes what is not its own\u202E\u2069"},
      {"\u2067two \u2066open", "\u2068\u2067two \u2066open\u2069\u2069\u2069"},
  };
  for (const auto& c : cases) EXPECT_EQ(QtParagraph::textToShow(c.text).toStdString(), c.shown);
}

}  // namespace
}  // namespace vantrel
