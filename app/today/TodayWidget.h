#pragma once

#include <QVariantAnimation>

#include "today/WidgetHost.h"
#include "today/card/CardWidget.h"
#include "today/sheet/PlanDescription.h"

namespace vantrel {

/// The card of a widget's host: shows what it describes, and passes it the touches of the rows.
/// Main thread only.
class TodayWidget : public CardWidget {
  Q_OBJECT

 public:
  /// Both must outlive the widget.
  TodayWidget(WidgetHost& host, const QtTextMeasurer& measurer);

  /// Shows what the host's widget shows now. A new life whose rows are the old ones leaves every
  /// pixel as it was.
  void showLife();
  /// How long a change of height takes, in milliseconds; 0 for none.
  void setAnimationDuration(int milliseconds) { animation_.setDuration(milliseconds); }
  int naturalHeight() const override;
  const std::vector<TouchButton*>& rowButtons() const { return rows_; }

 signals:
  /// A row's touch has ended or was cancelled, and the widget has done what it does about it.
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
