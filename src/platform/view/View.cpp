#include "platform/view/View.h"

namespace vantrel {

void View::setFrame(const Rect& frame) {
  if (frame == frame_) return;
  const double growth = frame.size.width - frame_.size.width;
  const bool resized = frame.size != frame_.size;
  frame_ = frame;
  needsDisplay_ = true;
  if (!resized) return;
  needsLayout_ = true;
  if (growth == 0) return;
  for (View* subview : subviews_) {
    if (!(subview->autoresizingMask_ & kFlexibleWidth)) continue;
    Rect stretched = subview->frame_;
    stretched.size.width += growth;
    subview->setFrame(stretched);
  }
}

void View::addSubview(View& subview) {
  subviews_.push_back(&subview);
  needsLayout_ = true;
  needsDisplay_ = true;
}

void View::layoutIfNeeded() {
  if (needsLayout_) {
    needsLayout_ = false;
    layoutSubviews();
  }
  for (View* subview : subviews_) subview->layoutIfNeeded();
}

bool View::takeNeedsDisplay() {
  bool needed = needsDisplay_;
  needsDisplay_ = false;
  // Clear the marks of all subviews: no short circuit.
  for (View* subview : subviews_) needed = subview->takeNeedsDisplay() || needed;
  return needed;
}

}  // namespace vantrel
