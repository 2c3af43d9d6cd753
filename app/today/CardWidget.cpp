#include "today/CardWidget.h"

#include <QEasingCurve>
#include <QPainter>
#include <QPointer>
#include <QResizeEvent>
#include <algorithm>
#include <cmath>

#include "platform/Bundle.h"
#include "platform/MainQueue.h"
#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"
#include "today/SpokenText.h"
#include "today/TouchButton.h"

namespace vantrel {

namespace {

QString localized(std::string_view key) {
  return QString::fromStdString(Bundle::mainBundle().localizedString(key, "", "Today"));
}

}  // namespace

CardWidget::CardWidget(WidgetHost& host, const QtTextMeasurer& measurer, QWidget* parent)
    : QWidget(parent),
      host_(host),
      measurer_(measurer),
      painter_(measurer),
      toggle_(new TouchButton(this)),
      barAction_(new TouchButton(this)),
      barText_(new SpokenText(this)),
      message_(new SpokenText(this)) {
  connectTextButton(*toggle_, &CardWidget::toggled);
  connectTextButton(*barAction_, &CardWidget::barActed);
  for (std::size_t row = 0; row < kRowSlots; ++row) makeRowButton(row);
  animation_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& height) {
    content_.bodyHeight = height.toDouble();
    layOut();
  });
  connect(&animation_, &QVariantAnimation::finished, this, &CardWidget::settled);
}

void CardWidget::connectTextButton(TouchButton& button, void (CardWidget::*signal)()) {
  connect(&button, &TouchButton::touchBegan, this, &CardWidget::takeFocusAndHold);
  connect(&button, &TouchButton::touchCancelled, this, &CardWidget::takeFocusAndHold);
  connect(&button, &TouchButton::focusChanged, this, &CardWidget::takeFocusAndHold);
  connect(&button, &TouchButton::touchEnded, this, [this, signal] {
    takeFocusAndHold();
    emit(this->*signal)();
  });
}

void CardWidget::makeRowButton(std::size_t row) {
  using Phase = WidgetHost::TouchPhase;
  auto* button = new TouchButton(this);
  rows_[row] = button;
  const auto send = [this, row](Phase phase) {
    return [this, row, phase](QPointF position) { touchRow(row, phase, position); };
  };
  connect(button, &TouchButton::touchBegan, this, send(Phase::kBegan));
  connect(button, &TouchButton::touchEnded, this, send(Phase::kEnded));
  connect(button, &TouchButton::touchCancelled, this, send(Phase::kCancelled));
  connect(button, &TouchButton::focusChanged, this, &CardWidget::takeFocusAndHold);
}

void CardWidget::touchRow(std::size_t row, WidgetHost::TouchPhase phase, QPointF position) {
  if (row >= layout_.rows.size()) return;
  const CardLayout::Row& place = layout_.rows[row];
  const QPointF point = rows_[row]->geometry().topLeft() + position;
  const bool begins = phase == WidgetHost::TouchPhase::kBegan;
  // The label that a touch began on hears of it to the end.
  if (begins) touchIsOnTitle_ = point.y() < (place.title.bottom() + place.date.top()) / 2;
  const QRectF& label = touchIsOnTitle_ ? place.title : place.date;
  const double x = content_.rightToLeft ? label.right() - point.x() : point.x() - label.left();
  host_.touch(row, touchIsOnTitle_, phase, {x, point.y() - label.top()});
  // Behind the widget's own message on the queue.
  MainQueue::sharedQueue().async([card = QPointer(this), begins] {
    if (!card) return;
    card->update();
    if (!begins) emit card->rowTouchFinished();
  });
}

bool CardWidget::isTouched() const {
  return std::any_of(rows_.begin(), rows_.end(), [](const auto* row) { return row->isHeld(); });
}

int CardWidget::naturalHeight() const {
  return static_cast<int>(std::ceil(layout_.pictureHeight() + targetHeight_ - content_.bodyHeight));
}

void CardWidget::showLife() {
  const double shownHeight = content_.bodyHeight;
  host_.describe(content_);
  toggle_->setText(QString::fromStdString(content_.toggle));
  const double target = content_.bodyHeight;
  if (isVisible()) content_.bodyHeight = shownHeight;
  moveToHeight(target);
  describeRows();
  layOut();
}

void CardWidget::moveToHeight(double target) {
  const bool changed = target != targetHeight_;
  targetHeight_ = target;
  if (content_.bodyHeight == target) return;
  layOut();
  if (changed) emit naturalHeightChanged();
  if (animation_.duration() == 0 || !isVisible()) {
    content_.bodyHeight = target;
    emit settled();
    return;
  }
  animation_.stop();
  animation_.setStartValue(content_.bodyHeight);
  animation_.setEndValue(target);
  animation_.start();
}

void CardWidget::describeRows() {
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
    // Escaped, or a zone's name could pass for markup.
    button.setToolTip(details.toHtmlEscaped());
  }
  message_->setText(content_.message ? QtParagraph::textToShow(content_.message->text())
                                     : QString());
  if (!changed || !isVisible()) return;
  setAccessibleDescription(localized("today_plans_changed"));
  announce(this);
}

void CardWidget::setBar(const std::optional<CardContent::Bar>& bar) {
  const bool isNew = bar && (!content_.bar || content_.bar->text != bar->text);
  const bool had = content_.bar.has_value();
  content_.bar = bar;
  if (bar) {
    barAction_->setText(QString::fromStdString(bar->action));
    barText_->setText(QtParagraph::textToShow(bar->text));
  }
  layOut();
  if (isNew) announce(barText_);
  if (had != bar.has_value() || isNew) {
    emit naturalHeightChanged();
    emit settled();
  }
}

void CardWidget::setTheme(const Theme& theme, const QColor& background) {
  theme_ = theme;
  background_ = background;
  update();
}

void CardWidget::layOut() {
  layout_ = CardLayout::make(content_, width(), measurer_);
  placeButtons();
  takeFocusAndHold();
}

void CardWidget::placeButtons() {
  const auto place = [](QWidget& widget, const QRectF& rect, bool visible) {
    if (visible) widget.setGeometry(rect.toAlignedRect());
    widget.setVisible(visible);
  };
  place(*toggle_, layout_.toggle, !content_.toggle.empty());
  place(*barAction_, layout_.barAction, content_.bar && !content_.bar->action.empty());
  place(*barText_, layout_.barText, content_.bar.has_value());
  place(*message_, layout_.message, content_.message != nullptr);
  for (std::size_t row = 0; row < kRowSlots; ++row) {
    const bool visible = row < layout_.rows.size();
    place(*rows_[row], visible ? layout_.rows[row].shape : QRectF(), visible);
  }
}

/// Takes over from the buttons what is to be drawn of them.
void CardWidget::takeFocusAndHold() {
  using Part = CardContent::Part;
  content_.held = toggle_->isHeld()      ? Part::kToggle
                  : barAction_->isHeld() ? Part::kBarAction
                                         : Part::kNone;
  content_.focused = toggle_->showsFocus()      ? Part::kToggle
                     : barAction_->showsFocus() ? Part::kBarAction
                                                : Part::kNone;
  for (std::size_t row = 0; row < kRowSlots; ++row) {
    if (!rows_[row]->showsFocus()) continue;
    content_.focused = Part::kRow;
    content_.focusedRow = row;
  }
  update();
}

void CardWidget::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), background_);
  painter_.paint(painter, size(), content_, layout_, theme_);
}

void CardWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (event->size().width() == event->oldSize().width() || !host_.isAlive()) return layOut();
  host_.setCardWidth(cardWidth(width()));
  showLife();
}

}  // namespace vantrel
