#include "today/TodayWindow.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QEnterEvent>
#include <QMenu>
#include <QPointingDevice>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>

#include "store/PlanLink.h"
#include "today/WindowTest.h"

namespace vantrel {
namespace {

using test::waitFor;

class TodayWindowTest : public test::WindowTest {
 protected:
  void addTwoPlans() {
    addPlan("Milky Way", "2026-07-15T21:40:00Z");
    addPlan("Sunrise", "2026-07-16T03:52:00Z", "Asia/Tokyo");
  }
  void openWindow() { show(std::make_unique<TodayWindow>(*measurer_, opener_)); }
  TouchButton* row(std::size_t index) {
    for (auto* candidate : buttons()) {
      if (!candidate->accessibleName().isEmpty() && index-- == 0) return candidate;
    }
    return nullptr;
  }
};

TEST_F(TodayWindowTest, ClickTouchKeysAndScreenReaderOpenTheSameLink) {
  addTwoPlans();
  openWindow();
  const CardLayout::Row& place = card().layoutOfCard().rows[1];
  const int gap = static_cast<int>((place.title.bottom() + place.date.top()) / 2);
  ASSERT_LT(place.title.bottom(), place.date.top());
  const std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
  const std::function<void()> ways[] = {
      [&] {
        QTest::mouseClick(row(1), Qt::LeftButton, {}, {40, gap - row(1)->y()});
      },
      [&] { QTest::keyClick(row(1), Qt::Key_Return); },
      [&] { QTest::keyClick(row(1), Qt::Key_Space); },
      [&] { row(1)->click(); },
      [&] {
        QTest::touchEvent(row(1), finger.get()).press(0, {20, 10});
        QTest::touchEvent(row(1), finger.get()).release(0, {22, 12});
      },
  };
  for (const auto& way : ways) {
    const auto before = opener_.links.size();
    way();
    ASSERT_TRUE(waitFor([&] { return opener_.links.size() > before; }));
  }
  const std::string link = deepLink(*store().planNamed("Sunrise"));
  EXPECT_EQ(opener_.links, std::vector(std::size(ways), link));
}

TEST_F(TodayWindowTest, ATouchLetGoOutsideOrGivenUpOpensNothing) {
  addTwoPlans();
  openWindow();
  const auto rowColor = [&] {
    return card().grab().toImage().pixelColor(row(0)->geometry().topLeft() +
                                              QPoint(4, row(0)->height() / 2));
  };
  const QColor untouched = rowColor();
  const std::function<void()> ways[] = {
      [&] { QTest::mouseRelease(row(0), Qt::LeftButton, {}, QPoint(20, -30)); },
      [&] { QTest::keyClick(row(0), Qt::Key_Escape); },
      [&] { row(0)->hide(); },
  };
  for (const auto& giveUp : ways) {
    QTest::mousePress(row(0), Qt::LeftButton, {}, QPoint(20, 10));
    ASSERT_TRUE(waitFor([&] { return rowColor() != untouched; })) << "held rows stand out";
    giveUp();
    EXPECT_TRUE(waitFor([&] { return row(0) && rowColor() == untouched; }));
  }
  EXPECT_TRUE(opener_.links.empty());
}

TEST_F(TodayWindowTest, AnotherProgramsCommitMakesTheRowAppear) {
  addPlan("Milky Way", "2026-07-15T21:40:00Z");
  openWindow();
  ASSERT_NE(row(0), nullptr);
  addPlan("Moon", "2026-07-17T19:00:00Z");
  EXPECT_TRUE(waitFor([&] { return row(1) != nullptr; }));
  EXPECT_EQ(restarts_, 0);
}

TEST_F(TodayWindowTest, ANewLifeWithTheSameRowsLeavesEveryPixel) {
  addTwoPlans();
  openWindow();
  row(1)->setFocus(Qt::TabFocusReason);
  const QImage before = window_->grab().toImage();
  QTest::keyClick(window_.get(), Qt::Key_F5);
  EXPECT_EQ(window_->grab().toImage(), before);
  EXPECT_TRUE(row(1)->hasFocus());

  // The control: with another row the same key does change the picture.
  store().planNamed("Sunrise")->setName("Fog");
  save();
  QTest::keyClick(window_.get(), Qt::Key_F5);
  EXPECT_NE(window_->grab().toImage(), before);
}

TEST_F(TodayWindowTest, AtMidnightYesterdayGoes) {
  addTwoPlans();
  clock_.set(*dateFromIso8601String("2026-07-15T21:59:59.8Z"));
  openWindow();
  ASSERT_NE(row(1), nullptr);
  // The timer is armed; by the time it fires it is tomorrow in Madrid.
  clock_.set(*dateFromIso8601String("2026-07-15T22:00:00Z"));
  EXPECT_TRUE(waitFor([&] { return row(1) == nullptr; }));
  EXPECT_TRUE(row(0)->accessibleName().startsWith("Sunrise"));
}

TEST_F(TodayWindowTest, RightToLeftMirrorsRowsAndWhatTheyAreHitBy) {
  const test::EnvironmentGuard hebrew("LC_ALL", "he_IL.UTF-8");
  addTwoPlans();
  openWindow();
  const CardLayout& layout = card().layoutOfCard();
  EXPECT_EQ(layout.rows[0].title.right(), layout.card.right() - 37);
  EXPECT_EQ(layout.name.right(), layout.card.right() - 37);
  EXPECT_LT(layout.action.left(), layout.card.center().x());
  EXPECT_EQ(layout.rows[0].shape.right(), layout.rows[0].title.right() + 8);
  window_->resize(300, 300);
  EXPECT_EQ(layout.rows[0].title.width(), layout.card.width() - 37 - 11);
  auto* hit = card().childAt(layout.rows[1].title.center().toPoint());
  ASSERT_EQ(hit, row(1));
  QTest::mouseClick(hit, Qt::LeftButton, {}, QPoint(hit->width() - 12, 10));
  EXPECT_TRUE(waitFor([&] { return opener_.links.size() == 1; }));
}

TEST_F(TodayWindowTest, LargeLettersStayWholeInCompactMode) {
  addTwoPlans();
  QFont font = QApplication::font();
  font.setPointSizeF(22);
  QApplication::setFont(font);
  openWindow();
  const CardLayout& layout = card().layoutOfCard();
  ASSERT_EQ(layout.rows.size(), 2U);
  EXPECT_GE(layout.rows[0].title.height(), 30) << "two times the size";
  EXPECT_GE(layout.card.bottom(), layout.rows[1].date.bottom());
  EXPECT_GE(window_->height(), layout.pictureHeight() - 1);
}

TEST_F(TodayWindowTest, ARowHasAMenuAndATint) {
  addTwoPlans();
  store().planNamed("Milky Way")->setLatitude(41.3851);
  store().planNamed("Milky Way")->setLongitude(-2.1734);
  save();
  openWindow();
  std::string menus;
  for (std::size_t i = 0; i < 2; ++i) {
    for (const auto* action : row(i)->actions()) {
      menus += (action->isEnabled() ? "" : "-") + action->text().toStdString() + "\n";
    }
  }
  EXPECT_EQ(menus,
            "Open\nCopy link\nCopy coordinates\nShow on map\n"
            "Open\nCopy link\n-Copy coordinates\n-Show on map\n");
  row(0)->actions().at(2)->trigger();
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "41.38510, -2.17340");
  row(0)->actions().at(3)->trigger();
  row(0)->actions().at(0)->trigger();
  ASSERT_TRUE(waitFor([&] { return opener_.links.size() == 2; }));
  EXPECT_EQ(opener_.links, (std::vector<std::string>{"geo:41.3851000,-2.1734000",
                                                     deepLink(*store().planNamed("Milky Way"))}));

  const QImage before = card().grab(row(1)->geometry()).toImage();
  QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(row(1), &enter);
  EXPECT_NE(card().grab(row(1)->geometry()).toImage(), before);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(row(1), &leave);
  EXPECT_EQ(card().grab(row(1)->geometry()).toImage(), before);

  // The keyboard opens the menu of the row that has the focus.
  row(0)->setFocus(Qt::TabFocusReason);
  QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {5, 5}, row(0)->mapToGlobal(QPoint(5, 5)));
  std::string first;
  QTimer::singleShot(0, [&] {
    if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
      first = menu->actions().at(0)->text().toStdString();
      menu->close();
    }
  });
  QApplication::sendEvent(row(0), &byKey);
  EXPECT_EQ(first, "Open");
}

TEST_F(TodayWindowTest, WithoutAHandlerTheLinkCanBeCopied) {
  addTwoPlans();
  opener_.result = LinkOpener::Result::kNoHandler;
  openWindow();
  QTest::mouseClick(row(0), Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return button("Copy link") != nullptr; }));
  EXPECT_EQ(spoken(), "No application opens Vantrel links\n");
  QTest::mouseClick(button("Copy link"), Qt::LeftButton);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), opener_.links.at(0));

  // A plan that cannot be shown.
  opener_.result = LinkOpener::Result::kNoPlan;
  QTest::mouseClick(row(0), Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return spoken() == "This plan is not among yours\n"; }));
  EXPECT_NE(button("Copy link"), nullptr);

  // The bar covers no rows, and disappears once a link was opened.
  opener_.result = LinkOpener::Result::kOpened;
  QTest::mouseClick(row(1), Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return opener_.links.size() == 3; }));
  EXPECT_EQ(spoken(), "");
}

TEST_F(TodayWindowTest, AStoreThatCannotBeOpenedIsNotTakenForAnEmptyOne) {
  test::writeFile(path(), "this is no database, though it is long enough to look like one");
  openWindow();
  EXPECT_NE(spoken().find("No plans scheduled\n"), std::string::npos);
  ASSERT_NE(button("Retry"), nullptr);
  QTest::mouseClick(button("Retry"), Qt::LeftButton);
  EXPECT_EQ(restarts_, 1);
  EXPECT_EQ(test::readFile(path()).substr(0, 19), "this is no database");
}

TEST_F(TodayWindowTest, AStoreThatFailsLaterKeepsTheRowsOnTheCard) {
  addTwoPlans();
  openWindow();
  test::sqlite(path(), "ALTER TABLE ZPLANNING RENAME TO ZGONE");
  ASSERT_TRUE(waitFor([&] { return button("Retry") != nullptr; }));
  EXPECT_NE(row(1), nullptr);
  test::sqlite(path(), "ALTER TABLE ZGONE RENAME TO ZPLANNING");
  EXPECT_TRUE(waitFor([&] { return button("Retry") == nullptr; }));
  EXPECT_EQ(restarts_, 0);
}

TEST_F(TodayWindowTest, AnotherFileInTheStoresPlaceRestartsTheProgram) {
  addTwoPlans();
  openWindow();
  std::filesystem::copy_file(path(), home_ / "copy");
  std::filesystem::rename(home_ / "copy", path());
  EXPECT_TRUE(waitFor([&] { return restarts_ == 1; }));
}

TEST_F(TodayWindowTest, ModeIsRememberedAndFoldersAreMadeOnlyThen) {
  addPlan("Milky Way", "2026-07-15T21:40:00Z");
  for (int i = 0; i < 2; ++i) addTwoPlans();
  openWindow();
  EXPECT_EQ(row(2), nullptr);
  EXPECT_FALSE(std::filesystem::exists(home_ / "state"));
  QTest::mouseClick(button("Show more"), Qt::LeftButton);
  EXPECT_NE(row(4), nullptr);
  window_->close();
  openWindow();
  EXPECT_NE(button("Show less"), nullptr);
  EXPECT_NE(row(4), nullptr);
}

}  // namespace
}  // namespace vantrel
