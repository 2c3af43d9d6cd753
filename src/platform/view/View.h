#pragma once

#include <vector>

#include "base/Geometry.h"

namespace vantrel {

/// A finger or the pointer on a view, in the view's coordinates.
struct Touch {
  Point location;
};

/// A rectangle that lays out subviews and receives touches. Main thread only.
class View {
 public:
  /// Bits of `autoresizingMask`.
  static constexpr unsigned kFlexibleWidth = 2;

  explicit View(Rect frame = {}) : frame_(frame) {}
  virtual ~View() = default;
  View(View&&) = delete;

  const Rect& frame() const { return frame_; }
  /// A new size marks the view for layout and widens subviews of flexible width by the difference.
  void setFrame(const Rect& frame);
  Rect bounds() const { return {{0, 0}, frame_.size}; }
  void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }

  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden) {
    needsDisplay_ = needsDisplay_ || hidden != hidden_;
    hidden_ = hidden;
  }
  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }

  /// `subview` is not owned and must outlive this view.
  void addSubview(View& subview);

  void setNeedsLayout() { needsLayout_ = true; }
  /// Calls `layoutSubviews` of this view and of all views below it that are marked for layout.
  void layoutIfNeeded();
  virtual void layoutSubviews() {}
  void setNeedsDisplay() { needsDisplay_ = true; }
  /// Whether this view or one below it must be drawn again. Clears the marks.
  bool takeNeedsDisplay();

  virtual void touchesBegan(const Touch& /*touch*/) {}
  virtual void touchesMoved(const Touch& /*touch*/) {}
  virtual void touchesEnded(const Touch& /*touch*/) {}
  virtual void touchesCancelled(const Touch& /*touch*/) {}

 private:
  Rect frame_;
  unsigned autoresizingMask_ = 0;
  bool hidden_ = false;
  bool needsLayout_ = true;
  bool needsDisplay_ = true;
  int tag_ = 0;
  std::vector<View*> subviews_;
};

}  // namespace vantrel
