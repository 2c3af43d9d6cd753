#include "today/card/AppIcon.h"

#include <array>

namespace vantrel {

namespace {

/// The sizes in pixels that the build renders.
constexpr std::array kSizes{20, 30, 40, 60, 80, 256};

QString resourceFor(int size) {
  return QStringLiteral(":/icons/vantrel-%1.png").arg(size);
}

}  // namespace

QImage appIcon(double size, double scale) {
  int best = kSizes.back();
  for (const int candidate : kSizes) {
    if (candidate >= size * scale) {
      best = candidate;
      break;
    }
  }
  return QImage(resourceFor(best));
}

QIcon appIcon() {
  QIcon icon;
  for (const int size : kSizes) icon.addFile(resourceFor(size), QSize(size, size));
  return icon;
}

}  // namespace vantrel
