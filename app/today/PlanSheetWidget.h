#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "today/PlanSheetPainter.h"

namespace vantrel {

class SpokenText;
class TouchButton;

/// The sheet of a plan in a window: draws it, lays a button over every part that can be pressed,
/// and a text for screen readers over every other. Main thread.
class PlanSheetWidget : public QWidget {
  Q_OBJECT

 public:
  /// `measurer` must outlive the widget.
  explicit PlanSheetWidget(const QtTextMeasurer& measurer, QWidget* parent = nullptr);

  void showPlan(PlanSheetContent content);
  const PlanSheetContent& content() const { return content_; }
  void setBar(const std::optional<CardContent::Bar>& bar);
  void setTheme(const Theme& theme, const QColor& background);
  /// Sets the texts anew, after a change of their size.
  void layOut();
  int naturalHeight() const;

 signals:
  void copyPressed();
  void placePressed();
  void barActed();
  void naturalHeightChanged();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  TouchButton* makeButton(void (PlanSheetWidget::*signal)());
  void describe();
  void placeButtons();
  void takeFocusAndHold();

  const QtTextMeasurer& measurer_;
  PlanSheetPainter painter_;
  PlanSheetContent content_;
  PlanSheetLayout layout_;
  Theme theme_ = Theme::forStyle(false);
  QColor background_ = theme_.behind;
  TouchButton* copy_;
  TouchButton* barAction_;
  TouchButton* place_;
  SpokenText* barText_;
  std::vector<SpokenText*> texts_;
};

}  // namespace vantrel
