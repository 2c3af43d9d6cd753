#pragma once

#include <functional>
#include <string>

namespace vantrel {

enum class WidgetDisplayMode { kCompact = 0, kExpanded = 1 };

/// The widget's host, as the controller sees it. The host or a test passes its own.
class ExtensionContext {
 public:
  virtual ~ExtensionContext() = default;
  /// Whether the host supports display modes, as system versions from 10 do.
  virtual bool respondsToWidgetLargestAvailableDisplayMode() const = 0;
  virtual void setWidgetLargestAvailableDisplayMode(WidgetDisplayMode mode) = 0;
  /// Asks the host to open the URL; `completionHandler` may be empty.
  virtual void openURL(const std::string& url, std::function<void(bool)> completionHandler) = 0;
};

}  // namespace vantrel
