#pragma once

#include <functional>
#include <memory>

#include "platform/view/Label.h"

namespace vantrel {

/// A label that reports the phases of a touch, each to a target of its own. It names itself by its
/// tag. Main thread.
class TodayViewLabel : public Label {
 public:
  /// Gets the tag that the label had at the time of the touch.
  using Action = std::function<void(int tag)>;
  enum ActionType { kTouchBegan = 0, kTouchCancelled = 1, kTouchEnd = 2 };

  TodayViewLabel() { setUserInteractionEnabled(true); }

  /// Sets who hears of a phase; any other type than 0 and 1 is the touch's end. The label does not
  /// keep the target alive: `action` runs only while `target`, the receiver's lifetime token,
  /// lives.
  void setTarget(const std::weak_ptr<void>& target, Action action, int actionType);

  /// Phases are reported on a later turn of the main queue, never during the touch itself. A moving
  /// touch reports nothing.
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
