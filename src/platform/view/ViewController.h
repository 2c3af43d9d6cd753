#pragma once

#include <memory>

#include "base/Geometry.h"
#include "platform/view/ExtensionContext.h"
#include "platform/view/View.h"

namespace vantrel {

/// Owns a root view and hears of its life. The host calls, in this order: `loadViewIfNeeded`
/// (which runs `loadView` and `viewDidLoad`), `viewWillAppear`, `viewDidAppear`. Main thread.
class ViewController {
 public:
  /// The root view starts with the size the host gives the widget.
  ViewController(Size initialSize, std::shared_ptr<ExtensionContext> extensionContext)
      : initialSize_(initialSize), extensionContext_(std::move(extensionContext)) {}
  virtual ~ViewController() = default;
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  void loadViewIfNeeded();
  /// The root view; null before it is loaded.
  View* view() const { return view_.get(); }
  virtual void loadView();
  virtual void viewDidLoad() {}
  virtual void viewWillAppear(bool /*animated*/) {}
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void didReceiveMemoryWarning() {}

  ExtensionContext* extensionContext() const { return extensionContext_.get(); }
  /// The size that the controller asks its host for.
  Size preferredContentSize() const { return preferredContentSize_; }
  void setPreferredContentSize(Size size) { preferredContentSize_ = size; }

 private:
  Size initialSize_;
  std::shared_ptr<ExtensionContext> extensionContext_;
  std::unique_ptr<View> view_;
  Size preferredContentSize_;
};

}  // namespace vantrel
