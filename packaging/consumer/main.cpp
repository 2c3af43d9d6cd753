// The plans of the shared store by date, each with its distance from where the photographer stands.
// Usage: next_shoots LATITUDE LONGITUDE

#include <cstdlib>
#include <iostream>
#include <string>

#include "geo/GeodeticCalculator.h"
#include "store/Database.h"
#include "store/Planning.h"
#include "units/DistanceUnitsManager.h"
#include "units/NSNumberWithDistanceUnit.h"

using namespace vantrel;

namespace {

constexpr double kMetresPerFoot = 0.3048;

std::string distanceText(LocationCoordinate2D here, const Planning& plan) {
  if (!plan.latitude() || !plan.longitude()) return "somewhere";
  const LocationCoordinate2D place{*plan.latitude(), *plan.longitude()};
  const auto curve = GeodeticCalculator().geodeticCurveBetweenSource(here, 0, place, 0);
  const bool metric =
      DistanceUnitsManager::sharedInstance().currentUnits() == DistanceUnitsManager::kMetric;
  const double length = metric ? curve.distance() : curve.distance() / kMetresPerFoot;
  return NSNumberWithDistanceUnit::numberWithFloat(static_cast<float>(length))
      .formattedValueWithNumberOfDecimals(1, 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: next_shoots LATITUDE LONGITUDE\n";
    return 64;
  }
  const LocationCoordinate2D here{std::atof(argv[1]), std::atof(argv[2])};

  FetchRequest request;
  request.entityName = "Planning";
  request.sortDescriptors = {{"date", true}};
  ManagedObjectContext* context = Database::sharedInstance().managedObjectContext();
  const auto plans = context->executeFetchRequest(request);
  if (!plans) {
    std::cerr << "next_shoots: " << plans.error().localizedDescription << '\n';
    return 74;
  }
  for (const auto& object : *plans) {
    const auto& plan = static_cast<const Planning&>(*object);
    std::cout << plan.name().value_or("") << ": " << distanceText(here, plan) << '\n';
  }
  return 0;
}
