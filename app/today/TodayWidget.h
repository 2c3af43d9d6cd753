#pragma once

#include <QVariantAnimation>

#include "today/WidgetHost.h"
#include "today/card/CardWidget.h"
#include "today/sheet/PlanDescription.h"

namespace vantrel {

/// Shows the card of a WidgetHost and passes touches of its rows to the host. Main thread only.
class TodayWidget : public CardWidget {
  Q_OBJECT

 public:
  /// Both must outlive the widget.
  TodayWidget(WidgetHost& host, const QtTextMeasurer& measurer);

  /// Shows the current content of the host's widget. If its rows are unchanged, no pixel changes.
  void showLife();
  /// The duration of a change of height; 0 for none.
  void setAnimationDuration(int milliseconds) { animation_.setDuration(milliseconds); }
  int naturalHeight() const override;
  const std::vector<TouchButton*>& rowButtons() const { return rows_; }

 signals:
  /// The touch of a row has ended or was cancelled, and the widget has handled it.
  void rowTouchFinished();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void connectRow(std::size_t row);
  void touchRow(std::size_t row, WidgetHost::TouchPhase phase);
  void describeRows();

  WidgetHost& host_;
  PlanDescription plans_;
  double targetHeight_ = 0;
  QVariantAnimation animation_;
};

}  // namespace vantrel
