#pragma once

#include <functional>

#include "base/Geometry.h"
#include "platform/view/ExtensionContext.h"

namespace vantrel {

enum class WidgetUpdateResult { kNewData = 0, kNoData = 1, kFailed = 2 };

/// The widget's controller, as its host sees it.
class WidgetProviding {
 public:
  virtual ~WidgetProviding() = default;
  virtual void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(WidgetUpdateResult)>& /*completionHandler*/) {}
  virtual void widgetActiveDisplayModeDidChange(WidgetDisplayMode /*mode*/, Size /*maximumSize*/) {}
};

}  // namespace vantrel
