#pragma once

#include <functional>
#include <string>

namespace vantrel {

/// Opens links with the application that the desktop has for them.
class LinkOpener {
 public:
  enum class Result {
    kOpened,
    kNoHandler,
    kNoPlan,  ///< This very program is the handler, and has no such plan.
    kFailed,
  };
  /// Shows the plan of a link; false when there is none.
  using PlanShower = std::function<bool(const std::string& link)>;

  /// `showPlan` is asked instead of the desktop where that would start this very program.
  explicit LinkOpener(PlanShower showPlan = {}) : showPlan_(std::move(showPlan)) {}
  virtual ~LinkOpener() = default;
  /// `link` is opened byte for byte. Main thread.
  virtual Result open(const std::string& link);

 private:
  PlanShower showPlan_;
};

}  // namespace vantrel
