#include "store/Database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>

#include "objectstore/SqliteStore.h"
#include "objectstore/StoreError.h"
#include "platform/Bundle.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Image.h"
#include "store/Planning.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::EnvironmentGuard;
using testing::MatchesRegex;

struct RecordingDelegate : DatabaseDelegate {
  void databasePersistentStoreCoordinatorDidGetError(const std::string& message,
                                                     const std::string& title) override {
    told.push_back(title + ": " + message);
  }
  std::vector<std::string> told;
};

mode_t modeOf(const fs::path& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
}

TEST(Database, MakesTheStoreInThePrivateContainerOnFirstUse) {
  const test::TemporaryDirectory directory;
  const auto container = directory / "a/group";
  const EnvironmentGuard guard("VANTREL_GROUP_CONTAINER", container.string());
  Database database;
  EXPECT_EQ(database.groupStoreURL(), container / "Vantrel.sqlite");
  ASSERT_NE(database.managedObjectModel(), nullptr);
  EXPECT_FALSE(fs::exists(directory / "a")) << "asking makes nothing";
  auto* context = database.managedObjectContext();
  ASSERT_NE(context, nullptr);
  EXPECT_EQ(database.managedObjectContext(), context);
  EXPECT_EQ(context->persistentStoreCoordinator(), database.persistentStoreCoordinator());
  EXPECT_EQ(modeOf(directory / "a"), 0700U);
  EXPECT_EQ(modeOf(container), 0700U);
  EXPECT_EQ(modeOf(container / "Vantrel.sqlite"), 0600U);

  const auto plan = std::dynamic_pointer_cast<Planning>(context->insertNewObject("Planning"));
  ASSERT_TRUE(plan);
  EXPECT_THAT(*plan->uniqueIdentifier(),
              MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  const auto identifier = plan->uniqueIdentifier();
  plan->awakeFromInsert();
  EXPECT_EQ(plan->uniqueIdentifier(), identifier) << "one that is there stays";
  for (const auto& object :
       {context->insertNewObject("CustomPoi"), context->insertNewObject("Image"),
        context->insertNewObject("CustomCamera")}) {
    ASSERT_TRUE(std::dynamic_pointer_cast<IdentifiedObject>(object)) << object->entity().name;
    EXPECT_NE(object->valueForKey("uniqueIdentifier"), Value());
  }
  ASSERT_TRUE(context->save());
  EXPECT_EQ(modeOf(container / "Vantrel.sqlite-wal"), 0600U);
}

TEST(Database, TellsWhyTheStoreCannotBeOpened) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> make;
    bool hasContainer;
    const char* reason;
  };
  const std::vector<Case> cases = {
      {"a text in its place",
       [](const fs::path& file) { test::writeFile(file, std::string(4096, '%')); }, true,
       "the file is not a store"},
      {"a folder in its place", [](const fs::path& file) { fs::create_directory(file); }, true,
       "a folder is in the place of the store"},
      {"no application group", [](const fs::path&) {}, false, "there is no folder for the store"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const test::TemporaryDirectory directory;
    row.make(directory / "Vantrel.sqlite");
    const auto container =
        row.hasContainer ? std::optional(directory.path().string()) : std::nullopt;
    const EnvironmentGuard group("VANTREL_GROUP_CONTAINER", container);
    const EnvironmentGuard data("XDG_DATA_HOME", std::nullopt);
    const EnvironmentGuard home("HOME", std::nullopt);
    test::LogCapture log;
    Database database;
    const auto delegate = std::make_shared<RecordingDelegate>();
    database.setDelegate(delegate);
    auto* context = database.managedObjectContext();
    ASSERT_NE(context, nullptr);
    EXPECT_NE(database.persistentStoreCoordinator(), nullptr);
    EXPECT_THAT(delegate->told,
                testing::ElementsAre("Plans unavailable: The plans could not be opened: " +
                                     std::string(row.reason)));
    EXPECT_THAT(log.text(), MatchesRegex("Unresolved error org\\.vantrel\\.objectstore [0-9]+: " +
                                         std::string(row.reason) + ", \\{.*\\}\n"));
    // Whoever fetches gets the same reason.
    const auto plans = context->executeFetchRequest({.entityName = "Planning", .fetchLimit = 1});
    ASSERT_FALSE(plans);
    EXPECT_EQ(plans.error().localizedDescription, row.reason);
    context->insertNewObject("Planning");
    EXPECT_FALSE(context->save());
  }
}

TEST(Database, NeedsNoDelegateThatListens) {
  const test::TemporaryDirectory directory;
  fs::create_directory(directory / "Vantrel.sqlite");
  const EnvironmentGuard group("VANTREL_GROUP_CONTAINER", directory.path().string());
  const test::LogCapture log;
  for (const bool hasDelegate : {false, true}) {
    Database database;
    const auto silent = std::make_shared<DatabaseDelegate>();
    if (hasDelegate) database.setDelegate(silent);
    EXPECT_NE(database.managedObjectContext(), nullptr);
    EXPECT_EQ(database.delegate(), hasDelegate ? silent : nullptr);
  }
}

TEST(Database, ReadsTheSensorFormatsInPlace) {
  Database database;
  auto* context = database.staticManagedObjectContext();
  ASSERT_NE(context, nullptr);
  const auto file = Bundle::mainBundle().root() / "VantrelStatic.sqlite";
  const auto before = test::readFile(file);
  const auto formats = context->executeFetchRequest(
      {.entityName = "SensorFormat", .sortDescriptors = {{"name", true}}});
  ASSERT_TRUE(formats) << formats.error().localizedDescription;
  EXPECT_FALSE(formats->empty());
  formats->front()->setValueForKey("mine", "name");
  const auto saved = context->save();
  ASSERT_FALSE(saved);
  EXPECT_EQ(storeErrorCode(saved.error()), StoreErrorCode::kPermission);
  EXPECT_EQ(test::readFile(file), before);
  EXPECT_FALSE(fs::exists(file.string() + "-shm"));
}

// The bundle is found once per process: these run in one of their own.
TEST(DatabaseDeathTest, TakesTheSingleModelAndTellsWhenThereIsNone) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const test::TemporaryDirectory directory;
  const auto run = [&](const char* model) {
    const EnvironmentGuard bundle("VANTREL_BUNDLE", directory.path().string());
    const EnvironmentGuard group("VANTREL_GROUP_CONTAINER", (directory / "group").string());
    Database database;
    const auto url = database.modelURL();
    const auto count =
        database.managedObjectContext()->countForFetchRequest({.entityName = "Planning"});
    const auto formats =
        database.staticManagedObjectContext()->countForFetchRequest({.entityName = "SensorFormat"});
    std::fprintf(
        stderr, "%s: %s, %s\n", url ? url->filename().c_str() : model,
        count ? std::to_string(*count).c_str() : count.error().localizedDescription.c_str(),
        formats.error().localizedDescription.c_str());
    std::exit(0);
  };
  EXPECT_EXIT(run("none"), testing::ExitedWithCode(0),
              "none: the program's resources lack the model \"Vantrel\", "
              "the program's resources lack the model \"VantrelStatic\"");
  EXPECT_EXIT(
      {
        fs::copy_file(Bundle(fs::read_symlink("/proc/self/exe").parent_path() / "bundle").root() /
                          "Vantrel.momd/Vantrel4.mom",
                      directory / "Vantrel.mom");
        run("none");
      },
      testing::ExitedWithCode(0), "Vantrel.mom: 0, the program's resources lack");
}

TEST(Database, IsOneForTheProcess) {
  EXPECT_EQ(&Database::sharedInstance(), &Database::sharedInstance());
}

}  // namespace
}  // namespace vantrel
