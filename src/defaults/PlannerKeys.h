#pragma once

#include <string_view>

namespace vantrel {

/// Keys of the planner in the shared settings, with the types of their values: a contract between
/// this program and the main application.
inline constexpr std::string_view kUserDefaultsPlannerMapLat = "planner_mapLat";  ///< double
inline constexpr std::string_view kUserDefaultsPlannerMapLng = "planner_mapLng";  ///< double
inline constexpr std::string_view kUserDefaultsPlannerDate = "planner_date";      ///< date
/// String: the device's time zone when the key was written.
inline constexpr std::string_view kUserDefaultsPlannerTimeZone = "planner_timezone";
/// Integer: MapLayerState::stateValue().
inline constexpr std::string_view kUserDefaultsPlannerMilkyWayLayerState =
    "planner_milkyWayLayerState";
/// Integer: the page of the information panel.
inline constexpr std::string_view kUserDefaultsPlannerInfoWindowPage = "planner_infoWindowPage";
/// Data: keyed archive of a VTObserver.
inline constexpr std::string_view kUserDefaultsPlannerObserver = "planner_observer";
/// Doubles; written by the main application only.
inline constexpr std::string_view kUserDefaultsPlannerPinCoordLat = "planner_pinCoordLat";
inline constexpr std::string_view kUserDefaultsPlannerPinCoordLng = "planner_pinCoordLng";
/// Boolean: whether the obstacle is shown.
inline constexpr std::string_view kUserDefaultsPlannerObstacleToggle = "planner_obstacleToggle";
/// Doubles; -180 in either means that there is no obstacle.
inline constexpr std::string_view kUserDefaultsPlannerObstacleLatitude = "planner_obstacleLatitude";
inline constexpr std::string_view kUserDefaultsPlannerObstacleLongitude =
    "planner_obstacleLongitude";
inline constexpr std::string_view kUserDefaultsPlannerObstacleAltitude =
    "planner_obstacleAltitude";  ///< float
inline constexpr std::string_view kUserDefaultsPlannerObstacleAltitudeOffset =
    "planner_obstacleAltitudeOffset";  ///< float
inline constexpr std::string_view kUserDefaultsPlannerObstacleAltitudeAccuracy =
    "planner_obstacleAltitudeAccuracy";  ///< integer

}  // namespace vantrel
