#include "platform/qt/QtParagraph.h"

#include <gtest/gtest.h>

#include <QBitmap>
#include <QImage>
#include <QPainter>
#include <QRegion>

#include "platform/qt/QtTextMeasurer.h"
#include "today/Application.h"
#include "today/card/LabelPainter.h"

namespace vantrel {
namespace {

TEST(QtParagraph, IsolatesTheDirectionOfPlainText) {
  const struct {
    const char* text;
    const char* shown;
  } cases[] = {
      {"a\nb\r\nc\rd", "a\u2028b\u2028c\u2028d"},
      {"a\tb\x01 c\x7f", "a b  c "},
      {"<b>&amp;</b>", "<b>&amp;</b>"},
      {"\xff.", "\ufffd."},
      {"left as it is \u05D0", "left as it is \u05D0"},
      {"\u2066its \u202Eown\u2069 affair", "\u2066its \u202Eown\u2069 affair"},
      {"a\u202Eb", "\u2068a\u202Eb\u2069"},
      {"closes\u2069 what is not its own\u202E", "\u2068closes what is not its own\u202E\u2069"},
      {"\u2067two \u2066open", "\u2068\u2067two \u2066open\u2069\u2069\u2069"},
  };
  for (const auto& c : cases) EXPECT_EQ(QtParagraph::textToShow(c.text).toStdString(), c.shown);
}

TEST(QtParagraph, TruncatesLongTexts) {
  test::needApplication();
  const auto linesOf = [](std::size_t letters) {
    QtParagraph paragraph(std::string(letters, 'x'), QFont());
    paragraph.breakLines(300);
    return paragraph.lineCount();
  };
  EXPECT_LT(linesOf(5'000), linesOf(10'000));
  EXPECT_EQ(linesOf(1'000'000), linesOf(10'001));
}

TEST(QtParagraph, BreaksLinesAsMeasured) {
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

/// The bounding box of the pixels that are not white.
QRect inkOf(const Label& label, const QRectF& frame, bool rightToLeft) {
  QImage image(400, 100, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintLabel(painter, label, frame, Qt::black, QtTextMeasurer(), rightToLeft);
  painter.end();
  const QImage paper = image.createMaskFromColor(qRgb(255, 255, 255), Qt::MaskInColor);
  return QRegion(QBitmap::fromImage(paper)).boundingRect();
}

TEST(LabelPainter, KeepsToTheFrameOnTheInterfacesSide) {
  test::needApplication();
  Label label;
  label.setFont(Font::systemFontOfSize(15));
  label.setNumberOfLines(2);
  label.setAdjustsFontSizeToFitWidth(true);
  label.setMinimumScaleFactor(2.0 / 3);
  const QRectF frame(50, 20, 300, 44);
  for (const auto* text : {"Sunrise", test::kLongTitle, "حافة القمر"}) {
    for (const bool rightToLeft : {false, true}) {
      SCOPED_TRACE(std::string(text) + (rightToLeft ? ", right to left" : ""));
      label.setText(text);
      const QRect ink = inkOf(label, frame, rightToLeft);
      // Glyphs may exceed their width by a pixel.
      EXPECT_TRUE(frame.adjusted(-2, -2, 2, 2).contains(ink));
      const double gap = rightToLeft ? frame.right() - ink.right() : ink.left() - frame.left();
      EXPECT_LT(gap, 6);
    }
  }
}

}  // namespace
}  // namespace vantrel
