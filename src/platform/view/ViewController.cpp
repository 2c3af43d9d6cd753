#include "platform/view/ViewController.h"

namespace vantrel {

void ViewController::loadViewIfNeeded() {
  if (view_) return;
  loadView();
  viewDidLoad();
}

void ViewController::loadView() {
  view_ = std::make_unique<View>(Rect{{0, 0}, initialSize_});
}

}  // namespace vantrel
