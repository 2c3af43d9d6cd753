#include "platform/qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace vantrel {

void QtMainQueue::async(std::function<void()> function) {
  QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(function),
                            Qt::QueuedConnection);
}

}  // namespace vantrel
