#pragma once

#include <QCoreApplication>
#include <QMetaObject>
#include <utility>

#include "platform/system/MainQueue.h"

namespace vantrel {

/// A main queue over Qt's event loop. Requires a QCoreApplication.
class QtMainQueue : public MainQueue {
 public:
  void async(std::function<void()> function) override {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(function),
                              Qt::QueuedConnection);
  }
};

}  // namespace vantrel
