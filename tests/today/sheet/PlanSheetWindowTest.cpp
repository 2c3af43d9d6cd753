#include "today/sheet/PlanSheetWindow.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QTest>

#include "store/PlanLink.h"
#include "today/WindowTest.h"

namespace vantrel {
namespace {

using test::waitFor;

class PlanSheetWindowTest : public test::WindowTest {
 protected:
  void openSheet() {
    save();
    auto window = std::make_unique<PlanSheetWindow>(*measurer_, opener_, std::nullopt);
    window->showPlan(*plan_);
    show(std::move(window));
  }
  void placePlan() {
    plan_->setLatitude(41.3851);
    plan_->setLongitude(-2.1734);
  }
  std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }

  std::shared_ptr<Planning> plan_ = addPlan("<b>Sunrise</b>", "2026-07-16T03:52:00Z", "Asia/Tokyo");
};

TEST_F(PlanSheetWindowTest, TellsThePlanInPlainWordsAndFollowsIt) {
  plan_->setNotes("<img src=x>\n\u202Eexe.gpj");
  placePlan();
  openSheet();
  // Texts of ICU 72's full and short styles in en_US.
  const std::string rest =
      "Thursday, July 16, 2026 at 12:52\u202FPM\nAsia/Tokyo · tomorrow\nHere\n"
      "Thursday, July 16, 2026 at 5:52\u202FAM\nPlace\nPictures\nNone\nNotes\n"
      "\u2068<img src=x>\u2028\u202Eexe.gpj\u2069\n";
  EXPECT_EQ(spoken(), "<b>Sunrise</b>\n" + rest);
  ASSERT_NE(button("Place"), nullptr);
  const auto* place = QAccessible::queryAccessibleInterface(button("Place"));
  EXPECT_EQ(place->text(QAccessible::Description).toStdString(), "\u206641.38510, -2.17340\u2069");

  plan_->setName("Fog");
  save();
  EXPECT_TRUE(waitFor([&] { return spoken() == "Fog\n" + rest; }));
  store().context.deleteObject(plan_);
  save();
  EXPECT_TRUE(waitFor([&] { return spoken() == "This plan is not among yours\nFog\n" + rest; }));
}

TEST_F(PlanSheetWindowTest, KeysReachTheLinkAndThePlace) {
  placePlan();
  openSheet();
  window_->activateWindow();
  ASSERT_TRUE(waitFor([&] { return window_->isActiveWindow(); }));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_TRUE(button("Copy link")->showsFocus());
  EXPECT_EQ(clipboard(), deepLink(*plan_));

  opener_.result = LinkOpener::Result::kNoHandler;
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(button("Place")->showsFocus());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
  EXPECT_EQ(opener_.links, std::vector<std::string>{"geo:41.3851000,-2.1734000"});
  EXPECT_NE(spoken().find("No application shows places"), std::string::npos);
  QTest::mouseClick(buttons().at(1), Qt::LeftButton);
  EXPECT_EQ(clipboard(), "geo:41.3851000,-2.1734000");

  QTest::keyClick(window_.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(clipboard(), "41.38510, -2.17340");

  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
}

// Plans of one date follow each other by key.
TEST_F(PlanSheetWindowTest, KeysShowThePlansBeforeAndAfter) {
  const std::string dates[] = {"2026-07-16T03:52:00Z", "2026-07-17T00:00:00Z",
                               "2026-07-15T00:00:00Z", "2026-07-15T00:00:00Z"};
  for (const auto& date : dates) addPlan(date.substr(8, 2), date);
  openSheet();
  std::string seen;
  const auto press = [&](Qt::Key key, int times) {
    for (int i = 0; i < times; ++i) {
      QTest::keyClick(window_.get(), key, Qt::AltModifier);
      seen += window_->windowTitle().toStdString() + " ";
    }
  };
  press(Qt::Key_Right, 3);
  press(Qt::Key_Left, 5);
  EXPECT_EQ(seen, "16 17 17 16 <b>Sunrise</b> 15 15 15 ");
}

TEST_F(PlanSheetWindowTest, MirroredItIsHitWhereItIsSeen) {
  const test::EnvironmentGuard hebrew("LC_ALL", "he_IL.UTF-8");
  placePlan();
  openSheet();
  const int textRight = card().width() - static_cast<int>(CardLayout::kMargin) - 37;
  auto* place = buttons().at(1);
  EXPECT_EQ(card().childAt(textRight - 2, place->geometry().center().y()), place);
  EXPECT_EQ(card().childAt(120, place->geometry().center().y()), nullptr);
  const QImage seen = card().grab(place->geometry()).toImage();
  EXPECT_GT(seen.convertToFormat(QImage::Format_Indexed8).colorCount(), 1) << "there is text";
}

TEST_F(PlanSheetWindowTest, TextsOfAnyLengthMakeASheetOfSomeLength) {
  plan_->setName(std::string(1 << 20, 'x'));
  plan_->setNotes(std::string(100000, '\n') + "end");
  openSheet();
  EXPECT_LT(card().height(), 8000);
  EXPECT_LE(window_->height(), window_->screen()->availableSize().height());
}

}  // namespace
}  // namespace vantrel
