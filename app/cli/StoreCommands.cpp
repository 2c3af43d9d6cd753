#include <CLI/App.hpp>
#include <memory>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/SamplePlans.h"
#include "cli/StoreAccess.h"
#include "cli/StoreInfo.h"
#include "platform/Clock.h"
#include "store/Planning.h"
#include "store/VantrelPrefiller.h"

namespace vantrel::cli {

namespace {

constexpr const char* kPlanEntity = "Planning";

int showStore(Console& console) {
  const auto info = existingStore().and_then(storeInfo);
  if (!info) return console.fail(info.error());
  console.print(console.isJson() ? jsonForStoreInfo(*info) : textForStoreInfo(*info));
  return kExitDone;
}

/// Whether the sample is in the store with a date still to come, in whatever language.
Expected<bool> isPlanned(ManagedObjectContext& context, const SamplePlan& sample, Date now) {
  FetchRequest request;
  request.entityName = kPlanEntity;
  request.predicate = Predicate::equal("latitude", sample.latitude);
  const auto objects = context.executeFetchRequest(request);
  if (!objects) return tl::make_unexpected(objects.error());
  for (const auto& object : *objects) {
    const auto plan = std::dynamic_pointer_cast<Planning>(object);
    if (plan && plan->longitude() == sample.longitude && plan->date() >= now) return true;
  }
  return false;
}

Expected<void> addSample(ManagedObjectContext& context, const SamplePlan& sample) {
  const auto plan = std::dynamic_pointer_cast<Planning>(context.insertNewObject(kPlanEntity));
  if (!plan) {
    return tl::make_unexpected(failure(kExitInternal, "store sample", "the model has no plans"));
  }
  plan->setName(sample.name);
  plan->setNotes(sample.notes);
  plan->setTimezone(sample.timezone);
  plan->setLatitude(sample.latitude);
  plan->setLongitude(sample.longitude);
  plan->setDate(sample.date);
  // Only this one: in plans of the photographer a note left out would turn into an empty one.
  VantrelPrefiller::translatePlanning(*plan);
  return {};
}

int addSamples(Console& console) {
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const Date now = Clock::sharedClock().now();
  int added = 0;
  for (const auto& sample : samplePlans(now)) {
    const auto planned = isPlanned(**context, sample, now);
    if (!planned) return console.fail(planned.error());
    if (*planned) continue;
    if (const auto done = addSample(**context, sample); !done) return console.fail(done.error());
    ++added;
  }
  if (const auto saved = (*context)->save(); !saved) return console.fail(saved.error());
  console.note(std::to_string(added) + " sample plans added; see them with vantrel today");
  return kExitDone;
}

}  // namespace

void fillStoreCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  parser.add_subcommand("info", "Tell what the store is, without changing it")
      ->callback([&session] { session.exitCode = showStore(session.console); });
  parser.add_subcommand("sample", "Add eight sample plans on coming days; makes the store")
      ->callback([&session] { session.exitCode = addSamples(session.console); });
  fillStoreUpkeepCommands(parser, session);
}

}  // namespace vantrel::cli
