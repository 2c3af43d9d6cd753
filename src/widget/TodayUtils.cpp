#include "widget/TodayUtils.h"

#include <algorithm>

#include "defaults/PlannerKeys.h"
#include "defaults/VantrelUserDefaults.h"
#include "geo/VTObserver.h"
#include "platform/system/Device.h"
#include "platform/text/TimeZone.h"
#include "time/DeviceSystemMajorVersion.h"
#include "widget/MapLayerState.h"

namespace vantrel {

namespace {

constexpr double kMessageFontSize = 15;
constexpr double kTwoColumnsMinimumWidth = 600;

/// From version 13 on the colour of labels follows the interface style; before 10 hosts were dark.
Color textColor() {
  const int version = DeviceSystemMajorVersion();
  if (version >= 13) return Color::dynamicColor(Color::blackColor(), Color::whiteColor());
  return version > 9 ? Color::blackColor() : Color::whiteColor();
}

}  // namespace

bool TodayUtils::shouldLayoutWithTwoColumns(const Rect& rect) {
  return rect.size.width > kTwoColumnsMinimumWidth && DeviceSystemMajorVersion() < 10;
}

std::unique_ptr<Label> TodayUtils::textLabel() {
  auto label = std::make_unique<Label>();
  applyTextStyle(*label);
  return label;
}

std::unique_ptr<Label> TodayUtils::titleLabel() {
  auto label = textLabel();
  label->setFont(Font::boldSystemFontOfSize(kMessageFontSize));
  return label;
}

double TodayUtils::iconLeftMargin() {
  constexpr double kLargePhoneScreen = 736;
  const int version = DeviceSystemMajorVersion();
  if (version > 9) return 8;
  const Device& device = Device::currentDevice();
  if (device.userInterfaceIdiom() != Device::UserInterfaceIdiom::kPhone) {
    return version < 9 ? 16 : 12;
  }
  const Size screen = device.screenSize();
  if (std::max(screen.width, screen.height) != kLargePhoneScreen) return 16;
  return device.orientation() == Device::Orientation::kPortrait ? 20 : 49;
}

void TodayUtils::setDefaultPlannerPosition(LocationCoordinate2D position, Date date) {
  auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  VTObserver observer;
  observer.setCoordinate(position);
  defaults.setDouble(position.latitude, kUserDefaultsPlannerMapLat);
  defaults.setDouble(position.longitude, kUserDefaultsPlannerMapLng);
  defaults.setObject(PropertyList::data(observer.archivedData()), kUserDefaultsPlannerObserver);
  defaults.setObject(PropertyList::date(date), kUserDefaultsPlannerDate);
  defaults.setBool(false, kUserDefaultsPlannerObstacleToggle);
  defaults.setObject(PropertyList::string(TimeZone::defaultTimeZone().name()),
                     kUserDefaultsPlannerTimeZone);
  (void)defaults.synchronize();
}

void TodayUtils::setCurrentPlannerPanelIndex(std::int64_t index) {
  auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  defaults.setInteger(index, kUserDefaultsPlannerInfoWindowPage);
  (void)defaults.synchronize();
}

void TodayUtils::setPlannerMilkyWayVisible(bool visible) {
  auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  MapLayerState state;
  state.setIsVisible(visible);
  defaults.setInteger(state.stateValue(), kUserDefaultsPlannerMilkyWayLayerState);
  (void)defaults.synchronize();
}

void TodayUtils::applyTextStyle(Label& label) {
  label.setTextColor(textColor());
  label.setFont(Font::systemFontOfSize(kMessageFontSize));
  label.setAdjustsFontSizeToFitWidth(true);
  label.setMinimumScaleFactor(2.0 / 3);
}

}  // namespace vantrel
