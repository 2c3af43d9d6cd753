#pragma once

#include <QIcon>
#include <QImage>

namespace vantrel {

/// Returns the application's icon with `size` logical pixels for a device of that scale.
QImage appIcon(double size, double scale);
/// Returns the icon in all sizes, for windows.
QIcon appIcon();

}  // namespace vantrel
