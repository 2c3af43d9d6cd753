#include "today/TodayWindow.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QLabel>
#include <QPointingDevice>
#include <QTest>
#include <algorithm>
#include <filesystem>

#include "base/Iso8601.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTextMeasurer.h"
#include "support/Guards.h"
#include "support/TestStore.h"
#include "today/Application.h"
#include "today/RecordingOpener.h"
#include "today/TouchButton.h"

namespace vantrel {
namespace {

using test::waitFor;

/// A window over a store of its own, with the clock at ten in the morning of 15 July 2026.
class TodayWindowTest : public testing::Test {
 protected:
  TodayWindowTest() { test::needApplication(); }

  void addPlan(const std::string& name, const std::string& date, const std::string& zone) {
    const auto plan =
        store().insertPlan(name, dateFromIso8601String(date)->timeIntervalSinceReferenceDate());
    plan->setTimezone(zone);
    ASSERT_TRUE(store().context.save());
  }
  void addTwoPlans() {
    addPlan("Milky Way", "2026-07-15T21:40:00Z", "Europe/Madrid");
    addPlan("Sunrise", "2026-07-16T03:52:00Z", "Asia/Tokyo");
  }
  test::OpenStore& store() {
    if (!store_) store_ = std::make_unique<test::OpenStore>(path());
    return *store_;
  }
  std::filesystem::path path() const { return home_ / "Vantrel.sqlite"; }

  TodayWindow& openWindow(const TodayWindow::Wishes& wishes = {}) {
    TextMeasurer::install(measurer_);
    MainQueue::install(std::make_shared<QtMainQueue>());
    window_ = std::make_unique<TodayWindow>(*measurer_, opener_, wishes);
    QObject::connect(window_.get(), &TodayWindow::restartRequested, [this] { ++restarts_; });
    window_->show();
    QApplication::processEvents();
    return *window_;
  }
  /// The buttons that can be seen, in tab order.
  std::vector<TouchButton*> buttons() {
    const auto all = window_->findChildren<TouchButton*>();
    std::vector<TouchButton*> visible;
    std::copy_if(all.begin(), all.end(), std::back_inserter(visible),
                 [](const auto* button) { return button->isVisible(); });
    return visible;
  }
  TouchButton* row(std::size_t index) {
    for (auto* candidate : buttons()) {
      if (!candidate->accessibleName().isEmpty() && index-- == 0) return candidate;
    }
    return nullptr;
  }
  TouchButton* button(const QString& text) {
    for (auto* candidate : buttons()) {
      if (candidate->text() == text) return candidate;
    }
    return nullptr;
  }
  QStringList spokenTexts() {
    QStringList texts;
    for (auto* label : window_->findChildren<QLabel*>()) {
      if (label->isVisible()) texts << label->text();
    }
    return texts;
  }

  /// Another program saves a plan in a store of that journal.
  void commitWhileOpen(const std::string& journal) {
    addTwoPlans();
    store_.reset();
    ASSERT_EQ(test::sqlite(path(), "PRAGMA journal_mode = " + journal), journal);
    openWindow({.dark = {}, .expanded = true});
    ASSERT_NE(row(1), nullptr);
    addPlan("Moon", "2026-07-17T19:00:00Z", "Europe/Madrid");
    EXPECT_TRUE(waitFor([&] { return row(2) != nullptr; }));
    EXPECT_EQ(restarts_, 0);
    EXPECT_EQ(test::sqlite(path(), "PRAGMA journal_mode"), journal);
  }

  test::TemporaryDirectory home_;
  test::EnvironmentGuard group_{"VANTREL_GROUP_CONTAINER", home_.path().string()};
  test::EnvironmentGuard state_{"XDG_STATE_HOME", (home_ / "state").string()};
  test::EnvironmentGuard sessionBus_{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"};
  test::EnvironmentGuard systemBus_{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"};
  test::EnvironmentGuard locale_{"LC_ALL", "en_US.UTF-8"};
  test::EnvironmentGuard zone_{"TZ", "Europe/Madrid"};
  test::FakeClock clock_{*dateFromIso8601String("2026-07-15T08:00:00Z")};
  test::RecordingOpener opener_;
  std::unique_ptr<QPointingDevice> finger_{QTest::createTouchDevice()};
  std::shared_ptr<QtTextMeasurer> measurer_ = std::make_shared<QtTextMeasurer>();
  std::unique_ptr<test::OpenStore> store_;
  std::unique_ptr<TodayWindow> window_;
  int restarts_ = 0;
};

TEST_F(TodayWindowTest, ClickTouchKeysAndScreenReaderOpenTheSameLink) {
  addTwoPlans();
  openWindow();
  const CardLayout::Row& place = window_->card().layoutOfCard().rows[1];
  const int gap = static_cast<int>((place.title.bottom() + place.date.top()) / 2);
  ASSERT_LT(place.title.bottom(), place.date.top());
  const std::function<void()> ways[] = {
      [&] {
        QTest::mouseClick(row(1), Qt::LeftButton, {}, {40, gap - row(1)->y()});
      },
      [&] { QTest::keyClick(row(1), Qt::Key_Return); },
      [&] { QTest::keyClick(row(1), Qt::Key_Space); },
      [&] { row(1)->click(); },
      [&] {
        QTest::touchEvent(row(1), finger_.get()).press(0, {20, 10});
        QTest::touchEvent(row(1), finger_.get()).release(0, {22, 12});
      },
  };
  for (const auto& way : ways) {
    const auto before = opener_.links.size();
    way();
    ASSERT_TRUE(waitFor([&] { return opener_.links.size() > before; }));
  }
  std::string uri = store().planNamed("Sunrise")->objectID().URIRepresentation();
  for (std::size_t at = 0; (at = uri.find('/', at)) != std::string::npos; at += 3) {
    uri.replace(at, 1, "%2F");
  }
  EXPECT_EQ(opener_.links, std::vector(std::size(ways), "vantrel://plan?id=" + uri));
}

TEST_F(TodayWindowTest, ATouchLetGoOutsideOrGivenUpOpensNothing) {
  addTwoPlans();
  openWindow();
  const auto rowColor = [&] {
    return window_->card().grab().toImage().pixelColor(row(0)->geometry().topLeft() +
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

TEST_F(TodayWindowTest, ScreenReadersHearPlansWithDateAndZone) {
  addPlan("<b>Moon</b>", "2026-07-15T21:40:00Z", "Europe/Madrid");
  addPlan("Sunrise", "2026-07-16T03:52:00Z", "Asia/Tokyo");
  openWindow();
  const auto* moon = QAccessible::queryAccessibleInterface(row(0));
  EXPECT_EQ(moon->role(), QAccessible::Button);
  // Texts of ICU 72's full and short styles in en_US.
  EXPECT_EQ(moon->text(QAccessible::Name).toStdString(),
            "<b>Moon</b>, Wednesday, July 15, 2026 at 11:40\u202FPM (Europe/Madrid)");
  const auto* sunrise = QAccessible::queryAccessibleInterface(row(1));
  EXPECT_EQ(sunrise->text(QAccessible::Description).toStdString(),
            "Thursday, July 16, 2026 at 12:52\u202FPM (Asia/Tokyo), here Thursday, July 16, 2026 "
            "at 5:52\u202FAM");
}

TEST_F(TodayWindowTest, ACommitThroughALogMakesTheRowAppear) {
  commitWhileOpen("wal");
}

TEST_F(TodayWindowTest, ACommitThroughARollbackJournalMakesTheRowAppear) {
  commitWhileOpen("delete");
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
  ASSERT_TRUE(store().context.save());
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
  const CardLayout& layout = window_->card().layoutOfCard();
  EXPECT_EQ(layout.rows[0].title.right(), layout.card.right() - 37);
  EXPECT_EQ(layout.name.right(), layout.card.right() - 37);
  EXPECT_LT(layout.toggle.left(), layout.card.center().x());
  EXPECT_EQ(layout.rows[0].shape.right(), layout.rows[0].title.right() + 8);
  auto* hit = window_->card().childAt(layout.rows[1].title.center().toPoint());
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
  const CardLayout& layout = window_->card().layoutOfCard();
  ASSERT_EQ(layout.rows.size(), 2U);
  EXPECT_GE(layout.rows[0].title.height(), 30) << "two times the size";
  EXPECT_GE(layout.card.bottom(), layout.rows[1].date.bottom());
  EXPECT_GE(window_->height(), layout.pictureHeight() - 1);
}

TEST_F(TodayWindowTest, WithoutAHandlerTheLinkCanBeCopied) {
  addTwoPlans();
  opener_.result = LinkOpener::Result::kNoHandler;
  openWindow();
  QTest::mouseClick(row(0), Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return button("Copy link") != nullptr; }));
  EXPECT_TRUE(spokenTexts().contains("No application opens Vantrel links"));
  QTest::mouseClick(button("Copy link"), Qt::LeftButton);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), opener_.links.at(0));

  // A bar on the card takes nothing from the rows, and goes when a link could be opened.
  opener_.result = LinkOpener::Result::kOpened;
  QTest::mouseClick(row(1), Qt::LeftButton);
  ASSERT_TRUE(waitFor([&] { return opener_.links.size() == 2; }));
  EXPECT_EQ(spokenTexts(), QStringList());
}

TEST_F(TodayWindowTest, AStoreThatCannotBeOpenedIsNotTakenForAnEmptyOne) {
  test::writeFile(path(), "this is no database, though it is long enough to look like one");
  openWindow();
  EXPECT_TRUE(spokenTexts().contains("No plans scheduled"));
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
  addPlan("Milky Way", "2026-07-15T21:40:00Z", "Europe/Madrid");
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
