#pragma once

namespace vantrel {

class TodayEventsView;

/// Hears what happens in a TodayEventsView. Main thread.
class TodayViewDelegate {
 public:
  virtual ~TodayViewDelegate() = default;
  /// A row was tapped; `index` is its place in the view's plans.
  virtual void todayViewDidTapOnView(TodayEventsView& view, int type, int index) = 0;
  virtual void todayViewDidLayout() {}
};

}  // namespace vantrel
