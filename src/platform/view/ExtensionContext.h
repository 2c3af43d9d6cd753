#pragma once

#include <functional>
#include <string>

namespace vantrel {

/// How much room the host gives the widget.
enum class WidgetDisplayMode { kCompact = 0, kExpanded = 1 };

/// The host's side of the widget. Replaceable: the host (or a test) hands its own to the
/// controller.
class ExtensionContext {
 public:
  virtual ~ExtensionContext() = default;
  /// Whether the host knows display modes (system version 10 and later).
  virtual bool respondsToWidgetLargestAvailableDisplayMode() const = 0;
  virtual void setWidgetLargestAvailableDisplayMode(WidgetDisplayMode mode) = 0;
  /// Asks the host to open the URL; `completionHandler` may be empty.
  virtual void openURL(const std::string& url, std::function<void(bool)> completionHandler) = 0;
};

}  // namespace vantrel
