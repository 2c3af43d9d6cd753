#pragma once

#include <memory>

#include "base/Geometry.h"
#include "platform/view/ExtensionContext.h"
#include "platform/view/View.h"

namespace vantrel {

/// Owns a root view and follows its life cycle. The host calls `loadViewIfNeeded` (which calls
/// `loadView` and `viewDidLoad`), `viewWillAppear` and `viewDidAppear`, in this order. Main thread
/// only.
class ViewController {
 public:
  /// `initialSize` is the size of the root view when it is loaded.
  ViewController(Size initialSize, std::shared_ptr<ExtensionContext> extensionContext)
      : initialSize_(initialSize), extensionContext_(std::move(extensionContext)) {}
  virtual ~ViewController() = default;
  ViewController(ViewController&&) = delete;

  void loadViewIfNeeded() {
    if (view_) return;
    loadView();
    viewDidLoad();
  }
  /// Null before it is loaded.
  View* view() const { return view_.get(); }
  virtual void loadView() { view_ = std::make_unique<View>(Rect{{0, 0}, initialSize_}); }
  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void didReceiveMemoryWarning() {}

  ExtensionContext* extensionContext() const { return extensionContext_.get(); }
  Size preferredContentSize() const { return preferredContentSize_; }
  void setPreferredContentSize(Size size) { preferredContentSize_ = size; }

 private:
  Size initialSize_;
  std::shared_ptr<ExtensionContext> extensionContext_;
  std::unique_ptr<View> view_;
  Size preferredContentSize_;
};

}  // namespace vantrel
