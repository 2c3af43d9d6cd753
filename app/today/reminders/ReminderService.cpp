#include "today/reminders/ReminderService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QSocketNotifier>
#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Clock.h"
#include "base/Log.h"
#include "common/Staleness.h"
#include "platform/qt/QtParagraph.h"
#include "platform/system/Paths.h"
#include "platform/text/RelativeDateFormatter.h"
#include "store/Database.h"
#include "store/PlanLink.h"
#include "today/AppId.h"
#include "today/InterfaceText.h"
#include "today/StoreProblem.h"
#include "today/reminders/ReminderSetting.h"
#include "today/sheet/PlanDescription.h"

namespace vantrel {

namespace {

const QString kServer = QStringLiteral("org.freedesktop.Notifications");
const QString kServerPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kDefaultAction = QStringLiteral("default");
constexpr std::size_t kPlansPerFetch = 100;
constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 24 * kMinutesPerHour;

QDBusMessage callOf(const char* method) {
  return QDBusMessage::createMethodCall(kServer, kServerPath, kServer, QLatin1String(method));
}

/// "in 30 minutes", "in 2 hours", "in 3 days".
std::string timeUntil(Date date, Date now) {
  using Unit = RelativeDateFormatter::Unit;
  const RelativeDateFormatter words(Locale::currentLocale());
  const int minutes = static_cast<int>(std::ceil(date.timeIntervalSinceDate(now) / 60));
  if (minutes < 2 * kMinutesPerHour) return words.relative(minutes, Unit::kMinute);
  if (minutes < 2 * kMinutesPerDay) {
    return words.relative((minutes + kMinutesPerHour / 2) / kMinutesPerHour, Unit::kHour);
  }
  return words.relative((minutes + kMinutesPerDay / 2) / kMinutesPerDay, Unit::kDay);
}

}  // namespace

ReminderService::ReminderService(PlanShower showPlan) : showPlan_(std::move(showPlan)) {
  const auto folder = paths::stateDirectory();
  if (folder) log_.emplace(*folder / "reminders");
}

void ReminderService::startFollowing() {
  const auto folder = paths::stateDirectory();
  if (folder) (void)paths::createPrivateDirectory(*folder);
  triggers_ = std::make_unique<RefreshTriggers>(
      Database::sharedInstance().groupStoreURL().value_or(std::filesystem::path()));
  connect(triggers_.get(), &RefreshTriggers::clockMoved, this, &ReminderService::update);
  connect(triggers_.get(), &RefreshTriggers::storeChanged, this, &ReminderService::update);
  connect(triggers_.get(), &RefreshTriggers::storeReplaced, this,
          &ReminderService::restartRequested);
  connect(triggers_.get(), &RefreshTriggers::timeZoneChanged, this,
          &ReminderService::restartRequested);
  if (timer_.fileDescriptor() >= 0) {
    auto* notifier = new QSocketNotifier(timer_.fileDescriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
      if (timer_.read() != WallTimer::Event::kNone) update();
    });
  }
  auto bus = QDBusConnection::sessionBus();
  bus.connect(kServer, kServerPath, kServer, QStringLiteral("ActionInvoked"), this,
              SLOT(invokeAction(uint, QString)));
  bus.connect(kServer, kServerPath, kServer, QStringLiteral("NotificationClosed"), this,
              SLOT(forgetNotification(uint)));
}

void ReminderService::reload() {
  leadTimes_ = storedLeadTimes();
  if (isOn() && !triggers_) startFollowing();
  update();
}

std::vector<std::shared_ptr<Planning>> ReminderService::comingPlans(Date now) const {
  // A store may have a million plans: read those with a reminder before the end of tomorrow. The
  // triggers fire at each midnight.
  constexpr std::chrono::hours kReach{48};
  const Date end = now.dateByAddingTimeInterval(
      std::chrono::duration<double>(leadTimes_.back() + kReach).count());
  for (std::size_t limit = kPlansPerFetch;; limit *= 2) {
    const auto objects = Database::sharedInstance().managedObjectContext()->executeFetchRequest(
        {.entityName = std::string(Planning::kEntityName),
         .predicate = Predicate::greaterThanOrEqual("date", now),
         .sortDescriptors = {{"date", true}},
         .fetchLimit = limit});
    std::vector<std::shared_ptr<Planning>> plans;
    if (!objects) return plans;
    for (const auto& object : *objects) {
      auto plan = std::dynamic_pointer_cast<Planning>(object);
      if (!plan || *plan->date() > end) break;
      plans.push_back(std::move(plan));
    }
    if (plans.size() < objects->size() || objects->size() < limit) return plans;
  }
}

void ReminderService::update() {
  if (!isOn() || !log_ || storeProblem()) return;
  const Date now = Clock::sharedClock().now();
  const auto plans = comingPlans(now);
  triggers_->ignoreStoreChangesSoFar();
  std::vector<PlannedShoot> shoots;
  shoots.reserve(plans.size());
  for (const auto& plan : plans) shoots.push_back({deepLink(*plan), *plan->date()});
  const auto schedule = ReminderSchedule::compute(shoots, leadTimes_, log_->load(), now);
  for (const auto& reminder : schedule.due) {
    const auto isOurs = log_->claim(reminder, now);
    if (!isOurs) {
      logFailure(QString::fromStdString(isOurs.error().localizedDescription));
    } else if (*isOurs) {
      const auto shoot = std::find_if(shoots.begin(), shoots.end(), [&](const auto& candidate) {
        return candidate.identifier == reminder.identifier;
      });
      show(*plans[static_cast<std::size_t>(shoot - shoots.begin())]);
    }
  }
  if (schedule.next) timer_.fireAt(systemInstant(*schedule.next));
}

void ReminderService::show(const Planning& plan) {
  std::string name = plan.name().value_or("");
  if (name.empty()) name = localized("today_plan_untitled");
  const QString summary = QtParagraph::textToShow(name);
  const QString body = QtParagraph::textToShow(PlanDescription().details(plan)) +
                       QLatin1Char('\n') +
                       QString::fromStdString(timeUntil(*plan.date(), Clock::sharedClock().now()));
  auto* watcher = new QDBusPendingCallWatcher(
      QDBusConnection::sessionBus().asyncCall(callOf("GetCapabilities")), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [this, watcher, summary, body, link = deepLink(plan)] {
            watcher->deleteLater();
            const QDBusPendingReply<QStringList> reply = *watcher;
            if (reply.isError()) return logFailure(reply.error().message());
            const bool hasMarkup = reply.value().contains(QLatin1String("body-markup"));
            notify(summary, hasMarkup ? body.toHtmlEscaped() : body, link);
          });
}

void ReminderService::notify(const QString& summary, const QString& body, const std::string& link) {
  const QString id = QString::fromLatin1(kApplicationId);
  constexpr int kServersOwnTime = -1;
  auto call = callOf("Notify");
  call << QStringLiteral("Vantrel") << 0u << id << summary << body
       << QStringList{kDefaultAction, QString::fromStdString(localized("today_open"))}
       << QVariantMap{{QStringLiteral("desktop-entry"), id}} << kServersOwnTime;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, link] {
    watcher->deleteLater();
    const QDBusPendingReply<uint> reply = *watcher;
    if (reply.isError()) return logFailure(reply.error().message());
    links_[reply.value()] = link;
  });
}

void ReminderService::logFailure(const QString& reason) {
  if (std::exchange(hasLoggedFailure_, true)) return;
  logLine("vantrel-today: reminders: " + reason.toStdString());
}

void ReminderService::invokeAction(uint notification, const QString& action) {
  const auto link = links_.constFind(notification);
  if (link != links_.constEnd() && action == kDefaultAction) showPlan_(std::string(*link));
}

void ReminderService::forgetNotification(uint notification) {
  links_.remove(notification);
}

}  // namespace vantrel
