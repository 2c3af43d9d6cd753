#include "today/desktop/ApplicationService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDBusMessage>
#include <QProcess>
#include <filesystem>

#include "store/PlanLink.h"
#include "support/Guards.h"
#include "support/TestStore.h"
#include "today/Application.h"
#include "today/PrivateBus.h"

namespace vantrel {
namespace {

/// A first program in this process, on a bus of its own; later ones are started for real.
class ApplicationServiceTest : public testing::Test {
 protected:
  ApplicationServiceTest() {
    test::needApplication();
    EXPECT_EQ(service_.start({}, {}), ApplicationService::Role::kFirst);
  }
  /// The exit code of a later start, while the first serves.
  int startAnother(const QStringList& arguments) {
    QProcess program;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_ACTIVATION_TOKEN", "permitted");
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationDirPath() + "/vantrel-today", arguments);
    const bool ended = test::waitFor([&] { return program.state() == QProcess::NotRunning; });
    return ended && program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
  }
  QDBusMessage call(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall("org.vantrel.today", "/org/vantrel/today",
                                                  "org.freedesktop.Application", method);
    message.setArguments(arguments);
    return daemon_.connection("launcher").call(message, QDBus::BlockWithGui);
  }
  std::string note(const std::string& what) {
    asked_.push_back(what + " " + qEnvironmentVariable("XDG_ACTIVATION_TOKEN").toStdString());
    qunsetenv("XDG_ACTIVATION_TOKEN");
    return what;
  }

  const test::PrivateBus daemon_;
  const test::EnvironmentGuard address_{"DBUS_SESSION_BUS_ADDRESS", daemon_.address()};
  const test::TemporaryDirectory home_;
  const test::EnvironmentGuard group_{"VANTREL_GROUP_CONTAINER", home_.path().string()};
  std::vector<std::string> asked_;
  const ApplicationService::Actions actions_ = {
      .activate = [this] { note("activate"); },
      .open = [this](auto& link) { return note(link) != "vantrel://nothing"; },
      .perform = [this](auto& action) { return note(action.toStdString()) != "explode"; }};
  ApplicationService service_{(home_ / "Vantrel.sqlite").string(), actions_};
};

TEST_F(ApplicationServiceTest, LaterStartsAskTheFirstAndHandOnTheirToken) {
  test::OpenStore store(home_ / "Vantrel.sqlite");
  const auto plan = store.insertPlan("Sunrise", 805866720);
  ASSERT_TRUE(store.context.save());
  const std::string link = deepLink(*plan);
  EXPECT_EQ(startAnother({}), 0);
  EXPECT_EQ(startAnother({"--expanded"}), 0);
  EXPECT_EQ(startAnother({"--open", QString::fromStdString(link)}), 0);
  EXPECT_EQ(asked_, (std::vector<std::string>{"activate permitted", "show-more permitted",
                                              link + " permitted"}));
}

TEST_F(ApplicationServiceTest, LinksThatLeadNowhereReachNobody) {
  { const test::OpenStore store(home_ / "Vantrel.sqlite"); }
  const std::string other =
      "vantrel://plan?id=x-coredata:%2F%2F00000000-0000-4000-8000-000000000000%2FPlanning%2Fp1";
  const struct {
    const char* name;
    std::string link;
    int exitCode;
  } cases[] = {
      {"another store's", other, 66},
      {"an escape sequence", other + "\x1b]0;x\x07", 65},
      {"much of nothing", "vantrel://plan?id=" + std::string(100000, '%'), 65},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    for (const char* way : {"--light", "--render=-"}) {
      const auto result = test::runProgram({"vantrel-today", way, "--open", c.link});
      EXPECT_EQ(result.exitCode, c.exitCode);
      EXPECT_EQ(result.output, "");
      EXPECT_THAT(result.errors, testing::MatchesRegex("vantrel-today: the link[^\n]{1,180}\n"));
    }
  }
  EXPECT_TRUE(asked_.empty());
}

TEST_F(ApplicationServiceTest, LaunchersAreToldWhatCannotBeDone) {
  using Message = QDBusMessage::MessageType;
  const QVariantMap none;
  const QVariantMap elsewhere{{"x-vantrel-store", "/elsewhere"}};
  EXPECT_EQ(call("Activate", {none}).type(), Message::ReplyMessage);
  EXPECT_EQ(call("Activate", {elsewhere}).type(), Message::ErrorMessage);
  EXPECT_EQ(call("Open", {QStringList{"vantrel://nothing"}, none}).type(), Message::ErrorMessage);
  EXPECT_EQ(call("ActivateAction", {"explode", QVariantList(), none}).type(),
            Message::ErrorMessage);
  EXPECT_EQ(asked_, (std::vector<std::string>{"activate ", "vantrel://nothing ", "explode "}));
}

TEST(Autostart, IsAnEntryThatDesktopsAcceptOnlyWhileAskedFor) {
  const test::TemporaryDirectory home;
  const test::EnvironmentGuard config("XDG_CONFIG_HOME", (home / "config").string());
  const auto set = [](const char* value) {
    return test::runProgram({"vantrel-today", "--autostart", value});
  };
  const auto folder = home / "config/autostart";
  EXPECT_EQ(set("off").exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(home / "config"));
  const mode_t mask = umask(0);
  for (int i = 0; i < 2; ++i) {
    const auto result = set("on");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
  }
  umask(mask);
  const auto entry = folder / "org.vantrel.today.desktop";
  EXPECT_EQ(std::filesystem::status(entry).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const auto checked = test::runProgram({"desktop-file-validate", entry.string()});
  EXPECT_EQ(checked.exitCode, 0);
  EXPECT_EQ(checked.output + checked.errors, "");
  EXPECT_NE(test::readFile(entry).find("/vantrel-today\"\n"), std::string::npos);
  EXPECT_EQ(set("off").exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_empty(folder));

  std::filesystem::remove(folder);
  test::writeFile(folder, "in the way");
  EXPECT_EQ(set("on").exitCode, 73);
  EXPECT_EQ(set("perhaps").exitCode, 64);
}

}  // namespace
}  // namespace vantrel
