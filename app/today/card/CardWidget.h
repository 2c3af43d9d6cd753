#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "today/card/CardPainter.h"

namespace vantrel {

class SpokenText;
class TouchButton;

/// Draws a card in a window, with a button over each part that can be pressed and a text for screen
/// readers over each other part. Main thread only.
class CardWidget : public QWidget {
  Q_OBJECT

 public:
  /// `measurer` must outlive the widget.
  explicit CardWidget(const QtTextMeasurer& measurer, QWidget* parent = nullptr);

  /// Fill in everything except the bar and the state of focus, pointer and touch; then call
  /// showContent().
  CardContent& content() { return content_; }
  void showContent();
  const CardLayout& layoutOfCard() const { return layout_; }
  /// Creates the button of the next row of the layout. The widget owns it.
  TouchButton* addRow();
  void setBar(const std::optional<CardContent::Bar>& bar);
  void setTheme(const Theme& theme, const QColor& background);
  /// Whether a row is being touched: it must then neither move nor disappear.
  bool isTouched() const;
  /// The height of the card with its margins.
  virtual int naturalHeight() const;

 signals:
  void actionPressed();
  void barPressed();
  void naturalHeightChanged();

 protected:
  void layOut();
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

  CardContent content_;
  CardLayout layout_;
  std::vector<TouchButton*> rows_;

 private:
  TouchButton* addButton();
  void placeButtons();
  void takeLook();

  const QtTextMeasurer& measurer_;
  CardPainter painter_;
  Theme theme_ = Theme::forStyle(false);
  QColor background_ = theme_.behind;
  int toldHeight_ = 0;
  TouchButton* action_;
  TouchButton* barAction_;
  SpokenText* barText_;
  SpokenText* message_;
  std::vector<SpokenText*> texts_;
};

}  // namespace vantrel
