#pragma once

#include <QIcon>
#include <QImage>

namespace vantrel {

/// The application's icon, sharp at `size` logical pixels on a device of that scale.
QImage appIcon(double size, double scale);
/// The same in all its sizes, for windows.
QIcon appIcon();

}  // namespace vantrel
