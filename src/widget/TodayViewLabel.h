#pragma once

#include <functional>
#include <memory>

#include "platform/view/Label.h"

namespace vantrel {

/// A label that reports each phase of a touch to a separate target. Main thread only.
class TodayViewLabel : public Label {
 public:
  /// `tag` is the label's at the time of the touch.
  using Action = std::function<void(int tag)>;
  enum ActionType { kTouchBegan = 0, kTouchCancelled = 1, kTouchEnd = 2 };

  /// Sets the target and action of a phase; any other type is kTouchEnd. `target` is held weakly:
  /// `action` is not called after its destruction.
  void setTarget(const std::weak_ptr<void>& target, Action action, int actionType);

  /// Actions are called on a later turn of the main queue. Moving touches are not reported.
  void touchesBegan(const Touch& touch) override;
  void touchesCancelled(const Touch& touch) override;
  void touchesEnded(const Touch& touch) override;

 private:
  struct TargetAction {
    std::weak_ptr<void> target;
    Action action;
  };
  void report(const TargetAction& phase) const;

  TargetAction touchBegan_;
  TargetAction touchCancelled_;
  TargetAction touchEnd_;
};

}  // namespace vantrel
