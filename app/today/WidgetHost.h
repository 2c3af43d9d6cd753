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

/// Hosts the widget as the phone's notification centre does: creates and releases it, sets its
/// width and mode, and passes touches to its labels. Independent of windows. Main thread only.
class WidgetHost {
 public:
  using LinkHandler = std::function<void(const std::string&)>;

  explicit WidgetHost(LinkHandler linkHandler = {});
  ~WidgetHost();

  /// Replaces the widget with a new one, which fetches the plans.
  void beginLife(double cardWidth, WidgetDisplayMode mode);
  bool isAlive() const { return controller_ != nullptr; }
  /// The user's text size, 1 by default. The height of the compact mode is proportional to it.
  void setTextScale(double textScale) { textScale_ = textScale; }
  /// Returns whether the widget was laid out again.
  bool setCardWidth(double width);
  void setMode(WidgetDisplayMode mode);

  /// Fills in `content` except its bar and the state of focus, pointer and touch.
  void describe(CardContent& content) const;
  /// Returns the plan of a visible row; null if there is none.
  std::shared_ptr<const Planning> plan(std::size_t row) const;

  /// Passes a touch of a visible row to the widget, which handles it on a later turn of the main
  /// queue.
  enum class TouchPhase { kBegan, kEnded, kCancelled };
  void touch(std::size_t row, TouchPhase phase);

 private:
  class Context;
  /// Whether the widget asked for the expanded mode; the host then offers both modes.
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
