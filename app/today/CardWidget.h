#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <array>
#include <vector>

#include "today/CardPainter.h"
#include "today/PlanDescription.h"
#include "today/WidgetHost.h"

namespace vantrel {

class SpokenText;
class TouchButton;

/// The card in a window: draws it, and lays a button over every part that can be pressed. Main
/// thread.
class CardWidget : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive the widget.
  CardWidget(WidgetHost& host, const QtTextMeasurer& measurer, QWidget* parent = nullptr);

  /// Shows what the host's widget shows now. A new life whose rows are the old ones leaves every
  /// pixel as it was.
  void showLife();
  void setBar(const std::optional<CardContent::Bar>& bar);
  void setTheme(const Theme& theme, const QColor& background);
  /// How long a change of height takes, in milliseconds; 0 for none.
  void setAnimationDuration(int milliseconds) { animation_.setDuration(milliseconds); }
  /// A row is being touched: its life must not end yet.
  bool isTouched() const;
  /// What the whole card needs in the end, its surroundings included.
  int naturalHeight() const;

  const CardLayout& layoutOfCard() const { return layout_; }

 signals:
  void toggled();
  void barActed();
  /// A row's touch has ended or was cancelled, and the widget has done what it does about it.
  void rowTouchFinished();
  void naturalHeightChanged();
  /// The height that is shown is the natural one.
  void settled();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  static constexpr std::size_t kRowSlots = 5;
  void makeRowButton(std::size_t row);
  void connectTextButton(TouchButton& button, void (CardWidget::*signal)());
  void touchRow(std::size_t row, WidgetHost::TouchPhase phase, QPointF position);
  void describeRows();
  void moveToHeight(double target);
  void layOut();
  void placeButtons();
  void takeFocusAndHold();

  WidgetHost& host_;
  const QtTextMeasurer& measurer_;
  CardPainter painter_;
  PlanDescription plans_;
  CardContent content_;
  CardLayout layout_;
  Theme theme_ = Theme::forStyle(false);
  QColor background_ = theme_.behind;
  double targetHeight_ = 0;
  QVariantAnimation animation_;
  bool touchIsOnTitle_ = false;
  TouchButton* toggle_;
  TouchButton* barAction_;
  SpokenText* barText_;
  SpokenText* message_;
  std::array<TouchButton*, kRowSlots> rows_{};
};

}  // namespace vantrel
