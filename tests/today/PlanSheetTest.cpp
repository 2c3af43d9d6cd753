#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QLabel>
#include <QTest>

#include "platform/qt/QtTextMeasurer.h"
#include "support/Guards.h"
#include "support/TestStore.h"
#include "today/Application.h"
#include "today/PlanSheetWindow.h"
#include "today/RecordingOpener.h"
#include "today/TouchButton.h"

namespace vantrel {
namespace {

class PlanSheetTest : public testing::Test {
 protected:
  PlanSheetTest() {
    test::needApplication();
    TextMeasurer::install(measurer_);
  }

  PlanSheetWindow& show() {
    EXPECT_TRUE(store_.context.save());
    window_ = std::make_unique<PlanSheetWindow>(*measurer_, opener_, std::nullopt);
    window_->showPlan(PlanSheetContent::make(*plan_, PlanDescription()));
    window_->show();
    QApplication::processEvents();
    return *window_;
  }
  TouchButton* button(const QString& name) {
    for (auto* candidate : window_->findChildren<TouchButton*>()) {
      const auto* accessible = QAccessible::queryAccessibleInterface(candidate);
      if (candidate->isVisible() && accessible->text(QAccessible::Name) == name) return candidate;
    }
    return nullptr;
  }
  /// What a screen reader finds beside the buttons, one text a line.
  std::string spoken() {
    std::string texts;
    for (auto* label : window_->findChildren<QLabel*>()) {
      if (!label->isVisible()) continue;
      const auto* accessible = QAccessible::queryAccessibleInterface(label);
      texts += accessible->text(QAccessible::Name).toStdString() + "\n";
    }
    return texts;
  }
  QString clipboard() { return QApplication::clipboard()->text(); }

  test::TemporaryDirectory home_;
  test::EnvironmentGuard group_{"VANTREL_GROUP_CONTAINER", home_.path().string()};
  test::EnvironmentGuard bus_{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"};
  test::EnvironmentGuard locale_{"LC_ALL", "en_US.UTF-8"};
  test::EnvironmentGuard zone_{"TZ", "Europe/Madrid"};
  std::shared_ptr<QtTextMeasurer> measurer_ = std::make_shared<QtTextMeasurer>();
  test::RecordingOpener opener_;
  test::OpenStore store_{home_ / "Vantrel.sqlite"};
  // 2026-07-16T03:52:00Z
  std::shared_ptr<Planning> plan_ = store_.insertPlan("<b>Sunrise</b>", 805866720);
  std::unique_ptr<PlanSheetWindow> window_;
};

TEST_F(PlanSheetTest, TellsThePlanInPlainWords) {
  plan_->setTimezone("Asia/Tokyo");
  plan_->setNotes("<img src=x>\n\u202Eexe.gpj");
  plan_->setLatitude(41.3851);
  plan_->setLongitude(-2.1734);
  show();
  // Texts of ICU 72's full and short styles in en_US.
  EXPECT_EQ(spoken(),
            "<b>Sunrise</b>\nThursday, July 16, 2026 at 12:52\u202FPM\nAsia/Tokyo\nHere\n"
            "Thursday, July 16, 2026 at 5:52\u202FAM\nPlace\nPictures\nNone\nNotes\n"
            "\u2068<img src=x>\u2028\u202Eexe.gpj\u2069\n");
  ASSERT_NE(button("Place"), nullptr);
  const auto* place = QAccessible::queryAccessibleInterface(button("Place"));
  EXPECT_EQ(place->text(QAccessible::Description).toStdString(), "\u206641.38510, -2.17340\u2069");
}

TEST_F(PlanSheetTest, KeysReachTheLinkAndThePlace) {
  plan_->setLatitude(41.3851);
  plan_->setLongitude(2.1734);
  PlanSheetWindow& window = show();
  window.activateWindow();
  ASSERT_TRUE(test::waitFor([&] { return window.isActiveWindow(); }));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_TRUE(button("Copy link")->showsFocus());
  EXPECT_EQ(clipboard().toStdString(), window.link());
  std::string uri = plan_->objectID().URIRepresentation();
  EXPECT_EQ(window.link(),
            "vantrel://plan?id=x-coredata:%2F%2F" + uri.substr(13, 36) + "%2FPlanning%2Fp1");

  opener_.result = LinkOpener::Result::kNoHandler;
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(button("Place")->showsFocus());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
  EXPECT_EQ(opener_.links, std::vector<std::string>{"geo:41.3851000,2.1734000"});
  EXPECT_NE(spoken().find("No application shows places"), std::string::npos);
  auto* copyPlace = window.findChildren<TouchButton*>().at(1);
  QTest::mouseClick(copyPlace, Qt::LeftButton);
  EXPECT_EQ(clipboard(), "geo:41.3851000,2.1734000");

  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(PlanSheetTest, FollowsItsPlan) {
  show();
  plan_->setName("Sunset");
  ASSERT_TRUE(store_.context.save());
  EXPECT_TRUE(test::waitFor([&] { return spoken().starts_with("Sunset\n"); }));
  store_.context.deleteObject(plan_);
  ASSERT_TRUE(store_.context.save());
  EXPECT_TRUE(test::waitFor([&] { return spoken().find("not among") != std::string::npos; }));
  EXPECT_NE(spoken().find("Sunset\n"), std::string::npos);
}

TEST_F(PlanSheetTest, MirroredItIsHitWhereItIsSeen) {
  const test::EnvironmentGuard hebrew("LC_ALL", "he_IL.UTF-8");
  plan_->setLatitude(41.3851);
  plan_->setLongitude(2.1734);
  show();
  auto* sheet = window_->findChild<PlanSheetWidget*>();
  const int textRight = sheet->width() - static_cast<int>(CardLayout::kMargin) - 37;
  auto* place = window_->findChildren<TouchButton*>().at(2);
  EXPECT_EQ(sheet->childAt(textRight - 2, place->geometry().center().y()), place);
  EXPECT_EQ(sheet->childAt(40, place->geometry().center().y()), nullptr);
}

TEST_F(PlanSheetTest, TextsOfAnyLengthMakeASheetOfSomeLength) {
  plan_->setName(std::string(1 << 20, 'x'));
  plan_->setNotes(std::string(100000, '\n') + "end");
  show();
  EXPECT_LT(window_->widget()->height(), 8000);
  EXPECT_LE(window_->height(), window_->screen()->availableSize().height());
}

}  // namespace
}  // namespace vantrel
