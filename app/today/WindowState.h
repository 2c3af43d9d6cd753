#pragma once

#include <QByteArray>

namespace vantrel {

/// The state of the window that is kept between runs, in the user's state folder. Main thread only.
struct WindowState {
  QByteArray geometry;  ///< From QWidget::saveGeometry; empty if unknown.
  bool expanded = false;

  static WindowState load();
  /// Creates the folder if necessary. Errors are ignored.
  void save() const;
};

}  // namespace vantrel
