#include "today/card/CardShadow.h"

#include <cmath>
#include <vector>

namespace vantrel {

namespace {

constexpr double kBlur = 28;
constexpr double kDrop = 8;

/// Returns the coverage of `count` pixels by a blurred bar from `first` to `last`.
std::vector<double> blurredBar(int count, double scale, double first, double last) {
  const double spread = kBlur / 2 * std::sqrt(2.0);
  std::vector<double> result(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < result.size(); ++i) {
    const double at = (static_cast<double>(i) + 0.5) / scale;
    result[i] = (std::erf((at - first) / spread) - std::erf((at - last) / spread)) / 2;
  }
  return result;
}

}  // namespace

// A blurred rectangle is the product of two blurred bars. With such a wide blur, the card's round
// corners make no visible difference.
const QImage& CardShadow::imageFor(const QSize& size, double scale, const QRectF& card,
                                   double opacity) {
  const QSize pixels(static_cast<int>(std::ceil(size.width() * scale)),
                     static_cast<int>(std::ceil(size.height() * scale)));
  if (image_.size() == pixels && card_ == card && scale_ == scale && opacity_ == opacity) {
    return image_;
  }
  card_ = card;
  scale_ = scale;
  opacity_ = opacity;
  // The painter's own format: converting another one starts threads, which takes longer than
  // drawing.
  image_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  image_.setDevicePixelRatio(scale);
  const auto across = blurredBar(pixels.width(), scale, card.left(), card.right());
  const auto down = blurredBar(pixels.height(), scale, card.top() + kDrop, card.bottom() + kDrop);
  for (int y = 0; y < pixels.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image_.scanLine(y));
    const double strength = down[static_cast<std::size_t>(y)] * opacity * 256;
    for (const double share : across) {
      *line++ = qRgba(0, 0, 0, static_cast<int>(share * strength));
    }
  }
  return image_;
}

}  // namespace vantrel
