#include "today/LabelPainter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "platform/qt/QtTextMeasurer.h"
#include "today/Application.h"

namespace vantrel {
namespace {

/// The box around what is not white.
QRect inkOf(const Label& label, const QRectF& frame, bool rightToLeft) {
  QImage image(400, 100, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  paintLabel(painter, label, frame, Qt::black, QtTextMeasurer(), rightToLeft);
  painter.end();
  QRect ink;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != qRgb(255, 255, 255)) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink;
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
      // Letters may reach a pixel over their own width.
      EXPECT_TRUE(frame.adjusted(-2, -2, 2, 2).contains(ink));
      const double gap = rightToLeft ? frame.right() - ink.right() : ink.left() - frame.left();
      EXPECT_LT(gap, 6);
    }
  }
}

}  // namespace
}  // namespace vantrel
