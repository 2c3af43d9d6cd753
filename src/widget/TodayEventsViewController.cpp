#include "widget/TodayEventsViewController.h"

#include <cstdint>

#include "base/Clock.h"
#include "store/Database.h"
#include "store/PlanLink.h"
#include "store/Planning.h"
#include "time/Date+Ephemeris.h"

namespace vantrel {

namespace {

constexpr EdgeInsets kMarginInsets{0, 37, 39, 0};

FetchRequest nextPlansRequest() {
  const Date startOfDay = ephemeris::dateWithStartDateTime(Clock::sharedClock().now());
  FetchRequest request;
  request.entityName = Planning::kEntityName;
  request.fetchLimit = TodayEventsView::kRowCount;
  request.predicate = Predicate::greaterThanOrEqual("date", startOfDay);
  request.sortDescriptors = {{"date", true}};
  return request;
}

TodayEventsView::Plans fetchPlans(ManagedObjectContext& context, const FetchRequest& request) {
  const auto objects = context.executeFetchRequest(request);
  if (!objects) return std::nullopt;
  std::vector<std::shared_ptr<Planning>> plans;
  for (const auto& object : *objects) plans.push_back(std::static_pointer_cast<Planning>(object));
  return plans;
}

}  // namespace

void TodayEventsViewController::loadView() {
  ViewController::loadView();
  todayView_ = std::make_unique<TodayEventsView>(view()->bounds());
  todayView_->setAutoresizingMask(View::kFlexibleWidth);
  todayView_->setDelegate(std::shared_ptr<TodayViewDelegate>(lifetime_, this));
  view()->addSubview(*todayView_);
}

void TodayEventsViewController::viewDidLoad() {
  ViewController::viewDidLoad();
  ExtensionContext* context = extensionContext();
  if (context && context->respondsToWidgetLargestAvailableDisplayMode()) {
    context->setWidgetLargestAvailableDisplayMode(WidgetDisplayMode::kExpanded);
    todayView_->setMarginInsets(kMarginInsets);
  }
  loadNextPlans();
  displayData();
}

void TodayEventsViewController::viewWillAppear(bool animated) {
  ViewController::viewWillAppear(animated);
  displayData();
}

void TodayEventsViewController::widgetPerformUpdateWithCompletionHandler(
    const std::function<void(WidgetUpdateResult)>& completionHandler) {
  displayData();
  if (completionHandler) completionHandler(WidgetUpdateResult::kNewData);
}

void TodayEventsViewController::loadNextPlans() {
  ManagedObjectContext* context = Database::sharedInstance().managedObjectContext();
  if (!context) {
    if (todayView_) todayView_->updateData(std::nullopt);
    return;
  }
  plans_ = fetchPlans(*context, nextPlansRequest());
  displayData();
}

void TodayEventsViewController::displayData() {
  if (todayView_) todayView_->updateData(plans_);
}

void TodayEventsViewController::updateWidgetHeight() {
  // A fractional content height never compares equal, since whole pixels are set.
  if (todayView_ && preferredContentSize().height != todayView_->contentHeight()) {
    preferContentHeight();
  }
}

void TodayEventsViewController::widgetActiveDisplayModeDidChange(WidgetDisplayMode mode,
                                                                 Size maximumSize) {
  const bool expanded = mode == WidgetDisplayMode::kExpanded;
  if (todayView_) todayView_->setShowExpanded(expanded);
  if (!expanded) {
    setPreferredContentSize(maximumSize);
  } else if (todayView_) {
    preferContentHeight();
  }
}

void TodayEventsViewController::preferContentHeight() {
  const auto height = static_cast<std::int32_t>(todayView_->contentHeight());
  setPreferredContentSize({view()->frame().size.width, static_cast<double>(height)});
}

void TodayEventsViewController::todayViewDidTapOnView(TodayEventsView& /*view*/, int /*type*/,
                                                      int index) {
  if (index < 0 || !plans_ || static_cast<std::size_t>(index) >= plans_->size()) return;
  const Planning& plan = *(*plans_)[static_cast<std::size_t>(index)];
  if (ExtensionContext* context = extensionContext()) context->openURL(deepLink(plan), {});
}

}  // namespace vantrel
