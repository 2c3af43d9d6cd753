#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/view/ExtensionContext.h"
#include "store/Planning.h"
#include "today/card/CardContent.h"
#include "widget/TodayEventsViewController.h"

namespace vantrel {

/// Plays the notification centre to the widget: begins and ends its lives, gives it width and mode,
/// hands touches to its labels. Knows no window. Main thread.
class WidgetHost {
 public:
  using LinkHandler = std::function<void(const std::string&)>;

  explicit WidgetHost(LinkHandler linkHandler = {});
  ~WidgetHost();

  /// A new life takes the place of the old one: it fetches the plans of this moment.
  void beginLife(double cardWidth, WidgetDisplayMode mode);
  bool isAlive() const { return controller_ != nullptr; }
  /// The user's text size, 1 for the usual one: the compact mode grows with it.
  void setTextScale(double textScale) { textScale_ = textScale; }
  /// Whether the widget was laid out anew.
  bool setCardWidth(double width);
  void setMode(WidgetDisplayMode mode);

  /// Fills in all of the card but its bar and what the user is doing to it.
  void describe(CardContent& content) const;
  /// The plan of a visible row, in their order; null for none.
  std::shared_ptr<const Planning> plan(std::size_t row) const;

  /// A finger on a visible row. What the widget does about it happens on a later turn of the main
  /// queue.
  enum class TouchPhase { kBegan, kEnded, kCancelled };
  void touch(std::size_t row, TouchPhase phase);

 private:
  class Context;
  /// Whether the widget asked for the expanded mode; then the host offers both.
  bool offersModes() const;
  Size maximumSize() const;
  double bodyHeight() const;

  double textScale_ = 1;
  double cardWidth_ = 0;
  WidgetDisplayMode mode_ = WidgetDisplayMode::kCompact;
  LinkHandler linkHandler_;
  std::shared_ptr<Context> context_;
  std::unique_ptr<TodayEventsViewController> controller_;
};

}  // namespace vantrel
