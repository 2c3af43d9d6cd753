#include "today/card/CardWidget.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/qt/QtParagraph.h"
#include "today/card/TouchButton.h"
#include "today/sheet/SpokenText.h"

namespace vantrel {

namespace {

void place(QWidget& widget, const QRectF& rect, bool visible) {
  if (visible) widget.setGeometry(rect.toAlignedRect());
  widget.setVisible(visible);
}

}  // namespace

CardWidget::CardWidget(const QtTextMeasurer& measurer, QWidget* parent)
    : QWidget(parent),
      measurer_(measurer),
      painter_(measurer),
      action_(addButton()),
      barAction_(addButton()),
      barText_(new SpokenText(this)),
      message_(new SpokenText(this)) {
  connect(action_, &TouchButton::touchEnded, this, &CardWidget::actionPressed);
  connect(barAction_, &TouchButton::touchEnded, this, &CardWidget::barPressed);
}

TouchButton* CardWidget::addButton() {
  auto* button = new TouchButton(this);
  connect(button, &TouchButton::touchBegan, this, &CardWidget::takeLook);
  connect(button, &TouchButton::touchEnded, this, &CardWidget::takeLook);
  connect(button, &TouchButton::touchCancelled, this, &CardWidget::takeLook);
  connect(button, &TouchButton::lookChanged, this, &CardWidget::takeLook);
  return button;
}

TouchButton* CardWidget::addRow() {
  return rows_.emplace_back(addButton());
}

bool CardWidget::isTouched() const {
  return std::any_of(rows_.begin(), rows_.end(), [](const auto* row) { return row->isHeld(); });
}

int CardWidget::naturalHeight() const {
  return static_cast<int>(std::ceil(layout_.pictureHeight()));
}

void CardWidget::setBar(const std::optional<CardContent::Bar>& bar) {
  const bool isNew = bar && (!content_.bar || content_.bar->text != bar->text);
  content_.bar = bar;
  if (bar) {
    barAction_->setText(QString::fromStdString(bar->action));
    barText_->setText(QtParagraph::textToShow(bar->text));
  }
  layOut();
  if (isNew) announce(barText_);
}

void CardWidget::setTheme(const Theme& theme, const QColor& background) {
  theme_ = theme;
  background_ = background;
  update();
}

void CardWidget::showContent() {
  action_->setText(QString::fromStdString(content_.action));
  message_->setText(content_.message ? QtParagraph::textToShow(content_.message->text())
                                     : QString());
  qDeleteAll(texts_);
  texts_.clear();
  for (const auto& text : content_.texts) {
    texts_.push_back(new SpokenText(this));
    texts_.back()->setText(QtParagraph::textToShow(text.text));
  }
  layOut();
}

void CardWidget::layOut() {
  layout_ = CardLayout::make(content_, width(), measurer_);
  placeButtons();
  takeLook();
  if (naturalHeight() == toldHeight_) return;
  toldHeight_ = naturalHeight();
  emit naturalHeightChanged();
}

void CardWidget::placeButtons() {
  place(*action_, layout_.action, !content_.action.empty());
  place(*barAction_, layout_.barAction, content_.bar && !content_.bar->action.empty());
  place(*barText_, layout_.barText, content_.bar.has_value());
  place(*message_, layout_.message, content_.message != nullptr);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const bool visible = row < layout_.rows.size();
    place(*rows_[row], visible ? layout_.rows[row].shape : QRectF(), visible);
  }
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const bool isButton = content_.texts[i].kind == CardContent::Text::Kind::kPlace;
    place(*texts_[i], layout_.texts[i].place, !isButton);
  }
}

/// Copies the state of the buttons to the content.
void CardWidget::takeLook() {
  using Part = CardContent::Part;
  content_.held = action_->isHeld()      ? Part::kAction
                  : barAction_->isHeld() ? Part::kBarAction
                  : isTouched()          ? Part::kRow
                                         : Part::kNone;
  content_.focused = action_->showsFocus()      ? Part::kAction
                     : barAction_->showsFocus() ? Part::kBarAction
                                                : Part::kNone;
  content_.hoveredRow.reset();
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (rows_[row]->isHovered()) content_.hoveredRow = row;
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
  layOut();
}

}  // namespace vantrel
