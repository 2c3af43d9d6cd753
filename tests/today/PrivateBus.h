#pragma once

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QProcess>
#include <string>

namespace vantrel::test {

/// A message bus of its own, for the object's life.
class PrivateBus {
 public:
  PrivateBus() {
    daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    EXPECT_TRUE(daemon_.waitForStarted() && daemon_.waitForReadyRead());
    address_ = daemon_.readLine().trimmed().toStdString();
  }
  ~PrivateBus() {
    daemon_.kill();
    daemon_.waitForFinished();
  }
  const std::string& address() const { return address_; }
  QDBusConnection connection(const QString& name) const {
    return QDBusConnection::connectToBus(QString::fromStdString(address_), name);
  }

 private:
  QProcess daemon_;
  std::string address_;
};

}  // namespace vantrel::test
