#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/Iso8601.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTextMeasurer.h"
#include "support/Guards.h"
#include "support/TestStore.h"
#include "today/Application.h"
#include "today/card/CardWindow.h"
#include "today/card/TouchButton.h"

namespace vantrel::test {

/// Stands in for the desktop: keeps the links, and answers as it is told.
struct RecordingOpener : LinkOpener {
  Result open(const std::string& link) override {
    links.push_back(link);
    return result;
  }
  std::vector<std::string> links;
  Result result = Result::kOpened;
};

/// A window over a store of its own, at ten in the morning of 15 July 2026 in Madrid.
class WindowTest : public testing::Test {
 protected:
  WindowTest() {
    needApplication();
    TextMeasurer::install(measurer_);
    MainQueue::install(std::make_shared<QtMainQueue>());
  }

  std::filesystem::path path() const { return home_ / "Vantrel.sqlite"; }
  OpenStore& store() {
    if (!store_) store_ = std::make_unique<OpenStore>(path());
    return *store_;
  }
  std::shared_ptr<Planning> addPlan(const std::string& name, const std::string& date,
                                    const std::string& zone = "Europe/Madrid") {
    const auto instant = dateFromIso8601String(date)->timeIntervalSinceReferenceDate();
    auto plan = store().insertPlan(name, instant);
    plan->setTimezone(zone);
    save();
    return plan;
  }
  void save() { ASSERT_TRUE(store().context.save()); }

  void show(std::unique_ptr<CardWindow> window) {
    window_ = std::move(window);
    QObject::connect(window_.get(), &CardWindow::restartRequested, [this] { ++restarts_; });
    window_->show();
    QApplication::processEvents();
  }
  CardWidget& card() { return *window_->findChild<CardWidget*>(); }
  /// The buttons that can be seen, in tab order.
  std::vector<TouchButton*> buttons() {
    std::vector<TouchButton*> visible;
    for (auto* button : window_->findChildren<TouchButton*>()) {
      if (button->isVisible()) visible.push_back(button);
    }
    return visible;
  }
  /// The first of them that a screen reader calls so.
  TouchButton* button(const QString& name) {
    for (auto* candidate : buttons()) {
      const auto* accessible = QAccessible::queryAccessibleInterface(candidate);
      if (accessible->text(QAccessible::Name) == name) return candidate;
    }
    return nullptr;
  }
  /// What a screen reader finds beside the buttons, one text a line.
  std::string spoken() {
    std::string texts;
    for (auto* label : window_->findChildren<QLabel*>()) {
      if (label->isVisible()) texts += label->text().toStdString() + "\n";
    }
    return texts;
  }

  TemporaryDirectory home_;
  EnvironmentGuard group_{"VANTREL_GROUP_CONTAINER", home_.path().string()};
  EnvironmentGuard state_{"XDG_STATE_HOME", (home_ / "state").string()};
  EnvironmentGuard sessionBus_{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"};
  EnvironmentGuard systemBus_{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"};
  EnvironmentGuard locale_{"LC_ALL", "en_US.UTF-8"};
  EnvironmentGuard zone_{"TZ", "Europe/Madrid"};
  FakeClock clock_{*dateFromIso8601String("2026-07-15T08:00:00Z")};
  RecordingOpener opener_;
  std::shared_ptr<QtTextMeasurer> measurer_ = std::make_shared<QtTextMeasurer>();
  std::unique_ptr<OpenStore> store_;
  std::unique_ptr<CardWindow> window_;
  int restarts_ = 0;
};

}  // namespace vantrel::test
