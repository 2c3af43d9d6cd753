#pragma once

#include <QByteArray>

namespace vantrel {

/// What the window remembers from run to run, in the user's state folder. Main thread.
struct WindowState {
  QByteArray geometry;  ///< As QWidget::saveGeometry tells it; empty when unknown.
  bool expanded = false;

  static WindowState load();
  /// Makes the folder when it is missing; a state that cannot be kept is lost without a word.
  void save() const;
};

}  // namespace vantrel
