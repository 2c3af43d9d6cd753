#pragma once

#include <QImage>
#include <QRectF>

namespace vantrel {

/// The shadow around a card, cached as an image.
class CardShadow {
 public:
  /// Returns an image of `size`: black with the alpha of the shadow.
  const QImage& imageFor(const QSize& size, double scale, const QRectF& card, double opacity);

 private:
  QImage image_;
  QRectF card_;
  double scale_ = 0;
  double opacity_ = 0;
};

}  // namespace vantrel
