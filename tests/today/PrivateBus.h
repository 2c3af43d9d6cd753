#pragma once

#include <QProcess>
#include <QString>

namespace vantrel::test {

/// A message bus of its own, for the object's life.
class PrivateBus {
 public:
  ~PrivateBus() {
    daemon_.kill();
    daemon_.waitForFinished();
  }
  bool start() {
    daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    if (!daemon_.waitForStarted() || !daemon_.waitForReadyRead()) return false;
    address_ = QString::fromUtf8(daemon_.readLine().trimmed());
    return !address_.isEmpty();
  }
  const QString& address() const { return address_; }

 private:
  QProcess daemon_;
  QString address_;
};

}  // namespace vantrel::test
