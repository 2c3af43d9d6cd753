#include "today/TodayWidget.h"

#include <QEasingCurve>
#include <QPointer>
#include <algorithm>
#include <cmath>

#include "platform/qt/QtParagraph.h"
#include "platform/system/MainQueue.h"
#include "today/card/TouchButton.h"
#include "today/sheet/SpokenText.h"

namespace vantrel {

TodayWidget::TodayWidget(WidgetHost& host, const QtTextMeasurer& measurer)
    : CardWidget(measurer), host_(host) {
  for (std::size_t row = 0; row < TodayEventsView::kRowCount; ++row) connectRow(row);
  animation_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& height) {
    content_.bodyHeight = height.toDouble();
    layOut();
  });
  connect(&animation_, &QVariantAnimation::finished, this, &TodayWidget::layOut);
}

void TodayWidget::connectRow(std::size_t row) {
  using Phase = WidgetHost::TouchPhase;
  const auto send = [this, row](Phase phase) {
    return [this, row, phase] { touchRow(row, phase); };
  };
  const TouchButton* button = addRow();
  connect(button, &TouchButton::touchBegan, this, send(Phase::kBegan));
  connect(button, &TouchButton::touchEnded, this, send(Phase::kEnded));
  connect(button, &TouchButton::touchCancelled, this, send(Phase::kCancelled));
}

void TodayWidget::touchRow(std::size_t row, WidgetHost::TouchPhase phase) {
  if (row >= layout_.rows.size()) return;
  host_.touch(row, phase);
  // After the widget's own message in the queue.
  MainQueue::sharedQueue().async([card = QPointer(this), phase] {
    if (!card) return;
    card->update();
    if (phase != WidgetHost::TouchPhase::kBegan) emit card->rowTouchFinished();
  });
}

int TodayWidget::naturalHeight() const {
  // A growing card needs the height at once, a shrinking one until the animation ends.
  const bool moves = animation_.state() == QAbstractAnimation::Running;
  const double height =
      moves ? std::max(targetHeight_, animation_.startValue().toDouble()) : targetHeight_;
  return static_cast<int>(std::ceil(layout_.bodyTop() + height + CardLayout::kMargin));
}

void TodayWidget::showLife() {
  const double shownHeight = content_.bodyHeight;
  host_.describe(content_);
  describeRows();
  targetHeight_ = content_.bodyHeight;
  animation_.stop();
  if (isVisible() && animation_.duration() > 0 && shownHeight != targetHeight_) {
    content_.bodyHeight = shownHeight;
    animation_.setStartValue(shownHeight);
    animation_.setEndValue(targetHeight_);
    animation_.start();
  }
  showContent();
}

void TodayWidget::describeRows() {
  bool changed = false;
  for (std::size_t row = 0; row < content_.rows.size(); ++row) {
    TouchButton& button = *rows_[row];
    const auto plan = host_.plan(row);
    if (!plan) continue;
    const QString name = QtParagraph::textToShow(plans_.name(*plan));
    const QString details = QtParagraph::textToShow(plans_.details(*plan));
    changed |= name != button.accessibleName();
    button.setAccessibleName(name);
    button.setAccessibleDescription(details);
    // Escaped: the name of a zone may look like markup.
    button.setToolTip(details.toHtmlEscaped());
  }
  if (!changed || !isVisible()) return;
  setAccessibleDescription(QString::fromStdString(localized("today_plans_changed")));
  announce(this);
}

void TodayWidget::resizeEvent(QResizeEvent* event) {
  if (!host_.setCardWidth(cardWidth(width()))) return CardWidget::resizeEvent(event);
  showLife();
}

}  // namespace vantrel
