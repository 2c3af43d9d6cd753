#include "widget/TodayViewLabel.h"

#include <utility>

#include "platform/system/MainQueue.h"

namespace vantrel {

void TodayViewLabel::setTarget(const std::weak_ptr<void>& target, Action action, int actionType) {
  TargetAction& phase = actionType == kTouchBegan       ? touchBegan_
                        : actionType == kTouchCancelled ? touchCancelled_
                                                        : touchEnd_;
  phase = {target, std::move(action)};
}

void TodayViewLabel::touchesBegan(const Touch& touch) {
  Label::touchesBegan(touch);
  report(touchBegan_);
}

void TodayViewLabel::touchesCancelled(const Touch& touch) {
  Label::touchesCancelled(touch);
  report(touchCancelled_);
}

void TodayViewLabel::touchesEnded(const Touch& touch) {
  Label::touchesEnded(touch);
  report(touchEnd_);
}

void TodayViewLabel::report(const TargetAction& phase) const {
  if (phase.target.expired() || !phase.action) return;
  // Captures no reference to the label, which may be destroyed or change its tag before the call.
  MainQueue::sharedQueue().async([phase, tag = tag()] {
    if (!phase.target.expired()) phase.action(tag);
  });
}

}  // namespace vantrel
