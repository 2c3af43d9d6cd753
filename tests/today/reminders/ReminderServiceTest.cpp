#include "today/reminders/ReminderService.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>

#include "store/PlanLink.h"
#include "today/PrivateBus.h"
#include "today/WindowTest.h"
#include "today/reminders/ReminderSetting.h"

namespace vantrel {
namespace {

using test::waitFor;

/// A notification server that renders markup in bodies.
class FakeServer : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  explicit FakeServer(const QDBusConnection& bus) : bus_(bus) {
    bus_.registerObject(kPath, this, QDBusConnection::ExportAllSlots);
    bus_.registerService("org.freedesktop.Notifications");
  }
  void pressOpen(uint notification) {
    auto signal =
        QDBusMessage::createSignal(kPath, "org.freedesktop.Notifications", "ActionInvoked");
    signal << notification << "default";
    bus_.send(signal);
  }
  std::vector<std::string> shown;

 public slots:
  QStringList GetCapabilities() { return {"body", "body-markup", "actions"}; }
  uint Notify(const QString& /*program*/, uint /*replaced*/, const QString& /*icon*/,
              const QString& summary, const QString& body, const QStringList& actions,
              const QVariantMap& /*hints*/, int /*time*/) {
    shown.push_back((summary + '|' + body + '|' + actions.join(',')).toStdString());
    return static_cast<uint>(shown.size());
  }

 private:
  static constexpr auto kPath = "/org/freedesktop/Notifications";
  QDBusConnection bus_;
};

class ReminderServiceTest : public test::WindowTest {
 protected:
  void start() {
    service_ = std::make_unique<ReminderService>([this](auto& link) { opened_.push_back(link); });
    service_->reload();
  }

  const test::EnvironmentGuard config_{"XDG_CONFIG_HOME", (home_ / "config").string()};
  const test::PrivateBus daemon_;
  const test::EnvironmentGuard onSessionBus_{"DBUS_SESSION_BUS_ADDRESS", daemon_.address()};
  std::unique_ptr<ReminderService> service_;
  std::vector<std::string> opened_;
};

TEST_F(ReminderServiceTest, RemindsOnceOfEachPlanAndFollowsTheStore) {
  FakeServer server(daemon_.connection("server"));
  // It is 10:00 in Madrid. The second plan is not due, the third is over.
  addPlan("<b>Sunrise</b> & fog", "2026-07-15T08:20:00Z", "Asia/Tokyo");
  addPlan("Evening", "2026-07-15T18:00:00Z");
  addPlan("Past", "2026-07-15T07:59:00Z");
  ASSERT_TRUE(storeLeadTimes({std::chrono::minutes(30)}));
  start();
  ASSERT_TRUE(waitFor([&] { return !server.shown.empty(); }));
  EXPECT_EQ(server.shown,
            std::vector<std::string>{
                "<b>Sunrise</b> & fog|Wednesday, July 15, 2026 at 5:20\u202FPM (Asia/Tokyo), here "
                "Wednesday, July 15, 2026 at 10:20\u202FAM, today\nin 20 minutes|default,Open"});
  server.pressOpen(1);
  ASSERT_TRUE(waitFor([&] { return !opened_.empty(); }));
  const auto sunrise = store().planNamed("<b>Sunrise</b> & fog");
  EXPECT_EQ(opened_, std::vector<std::string>{deepLink(*sunrise)});

  // After a restart, only a plan that was moved is announced again.
  start();
  sunrise->setDate(*dateFromIso8601String("2026-07-15T08:25:00Z"));
  save();
  ASSERT_TRUE(waitFor([&] { return server.shown.size() == 2; }));
  EXPECT_NE(server.shown.back().find("in 25 minutes"), std::string::npos);

  // Off: nothing more is shown.
  ASSERT_TRUE(storeLeadTimes({}));
  service_->reload();
  EXPECT_FALSE(service_->isOn());
  addPlan("Soon", "2026-07-15T08:10:00Z");
  ASSERT_TRUE(storeLeadTimes({std::chrono::minutes(15)}));
  service_->reload();
  ASSERT_TRUE(waitFor([&] { return server.shown.size() == 3; }));
  EXPECT_EQ(server.shown.back().substr(0, 4), "Soon");
}

TEST_F(ReminderServiceTest, WithoutAServerOneLineIsLogged) {
  addPlan("Sunrise", "2026-07-15T08:20:00Z");
  addPlan("Noon", "2026-07-15T08:25:00Z");
  ASSERT_TRUE(storeLeadTimes({std::chrono::minutes(30)}));
  testing::internal::CaptureStderr();
  start();
  QTest::qWait(0);
  EXPECT_TRUE(waitFor([&] { return service_->findChildren<QObject*>().size() > 0; }));
  ASSERT_TRUE(waitFor([&] {
    for (auto* child : service_->children()) {
      if (child->inherits("QDBusPendingCallWatcher")) return false;
    }
    return true;
  }));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

}  // namespace
}  // namespace vantrel

#include "ReminderServiceTest.moc"
