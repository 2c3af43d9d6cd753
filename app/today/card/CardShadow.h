#pragma once

#include <QImage>
#include <QRectF>

namespace vantrel {

/// The soft shadow around a card, kept as an image for as long as it serves.
class CardShadow {
 public:
  /// Black with the shadow's alpha, for the whole picture of `size`.
  const QImage& imageFor(const QSize& size, double scale, const QRectF& card, double opacity);

 private:
  QImage image_;
  QRectF card_;
  double scale_ = 0;
  double opacity_ = 0;
};

}  // namespace vantrel
