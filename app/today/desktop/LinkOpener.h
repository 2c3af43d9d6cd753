#pragma once

#include <functional>
#include <string>

namespace vantrel {

/// Opens links with the desktop's application for their scheme. Main thread only.
class LinkOpener {
 public:
  enum class Result {
    kOpened,
    kNoHandler,
    kNoPlan,  ///< This program opens the link itself, but cannot show the plan.
    kFailed,
  };
  /// Shows the plan of a link. Returns false if that is impossible.
  using PlanShower = std::function<bool(const std::string& link)>;

  /// `showPlan` opens links of plans that no other program handles. Without it, the desktop opens
  /// all links.
  explicit LinkOpener(PlanShower showPlan = {}) : showPlan_(std::move(showPlan)) {}
  virtual ~LinkOpener() = default;
  /// Opens `link` byte for byte.
  virtual Result open(const std::string& link);

 private:
  PlanShower showPlan_;
};

}  // namespace vantrel
