#include "today/PlanSheetWidget.h"

#include <QPainter>
#include <QResizeEvent>
#include <cmath>

#include "platform/Bundle.h"
#include "platform/qt/QtParagraph.h"
#include "today/SpokenText.h"
#include "today/TouchButton.h"

namespace vantrel {

namespace {

void place(QWidget& widget, const QRectF& rect, bool visible) {
  if (visible) widget.setGeometry(rect.toAlignedRect());
  widget.setVisible(visible);
}

}  // namespace

PlanSheetWidget::PlanSheetWidget(const QtTextMeasurer& measurer, QWidget* parent)
    : QWidget(parent),
      measurer_(measurer),
      painter_(measurer),
      copy_(makeButton(&PlanSheetWidget::copyPressed)),
      barAction_(makeButton(&PlanSheetWidget::barActed)),
      place_(makeButton(&PlanSheetWidget::placePressed)),
      barText_(new SpokenText(this)) {}

TouchButton* PlanSheetWidget::makeButton(void (PlanSheetWidget::*signal)()) {
  auto* button = new TouchButton(this);
  connect(button, &TouchButton::touchBegan, this, &PlanSheetWidget::takeFocusAndHold);
  connect(button, &TouchButton::touchCancelled, this, &PlanSheetWidget::takeFocusAndHold);
  connect(button, &TouchButton::focusChanged, this, &PlanSheetWidget::takeFocusAndHold);
  connect(button, &TouchButton::touchEnded, this, [this, signal] {
    takeFocusAndHold();
    emit(this->*signal)();
  });
  return button;
}

void PlanSheetWidget::showPlan(PlanSheetContent content) {
  content_ = std::move(content);
  describe();
  layOut();
}

void PlanSheetWidget::describe() {
  qDeleteAll(texts_);
  texts_.clear();
  for (const auto& item : content_.items) {
    auto* text = new SpokenText(this);
    text->setText(QtParagraph::textToShow(item.text));
    texts_.push_back(text);
  }
  copy_->setText(QString::fromStdString(content_.frame.toggle));
  const std::string caption =
      Bundle::mainBundle().localizedString("today_sheet_place", "", "Today");
  place_->setAccessibleName(QString::fromStdString(caption));
  setAccessibleName(QString::fromStdString(content_.title));
}

void PlanSheetWidget::setBar(const std::optional<CardContent::Bar>& bar) {
  content_.frame.bar = bar;
  if (bar) {
    barAction_->setText(QString::fromStdString(bar->action));
    barText_->setText(QtParagraph::textToShow(bar->text));
  }
  layOut();
  if (bar) announce(barText_);
}

void PlanSheetWidget::setTheme(const Theme& theme, const QColor& background) {
  theme_ = theme;
  background_ = background;
  update();
}

int PlanSheetWidget::naturalHeight() const {
  return static_cast<int>(std::ceil(layout_.card.pictureHeight()));
}

void PlanSheetWidget::layOut() {
  const int before = naturalHeight();
  layout_ = PlanSheetLayout::make(content_, width(), measurer_);
  placeButtons();
  takeFocusAndHold();
  if (naturalHeight() != before) emit naturalHeightChanged();
}

void PlanSheetWidget::placeButtons() {
  const auto& frame = content_.frame;
  place(*copy_, layout_.card.toggle, !frame.toggle.empty());
  place(*barAction_, layout_.card.barAction, frame.bar && !frame.bar->action.empty());
  place(*barText_, layout_.card.barText, frame.bar.has_value());
  place(*place_, layout_.hasPlace() ? layout_.card.rows.front().shape : QRectF(),
        layout_.hasPlace());
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const bool isButton = content_.items[i].kind == PlanSheetContent::Kind::kPlace;
    place(*texts_[i], layout_.items[i], !isButton);
    if (isButton) place_->setAccessibleDescription(texts_[i]->text());
  }
}

/// Takes over from the buttons what is to be drawn of them.
void PlanSheetWidget::takeFocusAndHold() {
  using Part = CardContent::Part;
  const auto partOf = [this](auto asks) {
    return (copy_->*asks)()        ? Part::kToggle
           : (barAction_->*asks)() ? Part::kBarAction
           : (place_->*asks)()     ? Part::kRow
                                   : Part::kNone;
  };
  content_.frame.held = partOf(&TouchButton::isHeld);
  content_.frame.focused = partOf(&TouchButton::showsFocus);
  update();
}

void PlanSheetWidget::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), background_);
  painter_.paint(painter, size(), content_, layout_, theme_);
}

void PlanSheetWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layOut();
}

}  // namespace vantrel
