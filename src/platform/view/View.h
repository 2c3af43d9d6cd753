#pragma once

#include <vector>

#include "base/Geometry.h"
#include "platform/view/Touch.h"

namespace vantrel {

/// A rectangle that lays out subviews and receives touches. A view does not own its subviews:
/// fields own them, `addSubview` takes a reference that must live as long as the view. Main thread.
class View {
 public:
  /// Bits of `autoresizingMask`.
  static constexpr unsigned kFlexibleWidth = 2;

  explicit View(Rect frame = {}) : frame_(frame) {}
  virtual ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  const Rect& frame() const { return frame_; }
  /// A change of size stretches subviews of flexible width by the same amount and marks for layout.
  void setFrame(const Rect& frame);
  Rect bounds() const { return {{0, 0}, frame_.size}; }
  unsigned autoresizingMask() const { return autoresizingMask_; }
  void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }

  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden) {
    needsDisplay_ = needsDisplay_ || hidden != hidden_;
    hidden_ = hidden;
  }
  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }
  bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }

  void addSubview(View& subview);
  const std::vector<View*>& subviews() const { return subviews_; }

  void setNeedsLayout() { needsLayout_ = true; }
  /// Runs `layoutSubviews` of this view and of all below it that are marked.
  void layoutIfNeeded();
  virtual void layoutSubviews() {}
  void setNeedsDisplay() { needsDisplay_ = true; }
  /// Whether something that shows changed in this view or below it; asked and cleared by the host.
  bool takeNeedsDisplay();

  virtual void touchesBegan(const Touch& /*touch*/) {}
  virtual void touchesMoved(const Touch& /*touch*/) {}
  virtual void touchesEnded(const Touch& /*touch*/) {}
  virtual void touchesCancelled(const Touch& /*touch*/) {}

 private:
  Rect frame_;
  unsigned autoresizingMask_ = 0;
  bool hidden_ = false;
  bool userInteractionEnabled_ = true;
  bool needsLayout_ = true;
  bool needsDisplay_ = true;
  int tag_ = 0;
  std::vector<View*> subviews_;
};

}  // namespace vantrel
