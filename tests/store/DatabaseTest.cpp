#include "store/Database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <set>

#include "platform/system/Bundle.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Image.h"
#include "store/Planning.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::EnvironmentGuard;
using testing::ElementsAre;
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

TEST(Database, CreatesTheStoreInThePrivateContainerOnFirstUse) {
  const test::TemporaryDirectory directory;
  const auto container = directory / "a/group";
  const EnvironmentGuard guard("VANTREL_GROUP_CONTAINER", container.string());
  Database database;
  EXPECT_EQ(database.groupStoreURL(), container / "Vantrel.sqlite");
  ASSERT_NE(database.managedObjectModel(), nullptr);
  EXPECT_FALSE(fs::exists(directory / "a")) << "the model alone creates nothing";
  auto* context = database.managedObjectContext();
  ASSERT_NE(context, nullptr);
  EXPECT_EQ(database.managedObjectContext(), context);
  EXPECT_EQ(context->persistentStoreCoordinator(), database.persistentStoreCoordinator());
  EXPECT_EQ(modeOf(directory / "a"), 0700U);
  EXPECT_EQ(modeOf(container), 0700U);
  EXPECT_EQ(modeOf(container / "Vantrel.sqlite"), 0600U);

  const auto plan = context->insertNewObject("Planning");
  const Value identifier = plan->valueForKey("uniqueIdentifier");
  EXPECT_THAT(std::get<std::string>(identifier),
              MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  const auto planning = std::dynamic_pointer_cast<Planning>(plan);
  ASSERT_TRUE(planning);
  planning->setUniqueIdentifier("mine");
  planning->awakeFromInsert();
  EXPECT_EQ(planning->uniqueIdentifier(), "mine") << "an identifier that is set stays";
  const auto picture = context->insertNewObject("Image");
  EXPECT_THAT(planning->images(), ElementsAre());
  ASSERT_TRUE(picture->setRelatedObject(plan, "planning"));
  EXPECT_THAT(planning->images(), ElementsAre(picture));
  for (const char* entity : {"Planning", "CustomPoi", "Image", "CustomCamera"}) {
    const auto object = context->insertNewObject(entity);
    ASSERT_TRUE(std::dynamic_pointer_cast<IdentifiedObject>(object)) << entity;
    EXPECT_NE(object->valueForKey("uniqueIdentifier"), Value()) << entity;
  }
  ASSERT_TRUE(context->save());
  EXPECT_EQ(modeOf(container / "Vantrel.sqlite-wal"), 0600U);
}

TEST(Database, ReportsWhyTheStoreCannotBeOpened) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> make;
    bool hasContainer;
    std::string reason;
  };
  const auto text = [](const fs::path& file) { test::writeFile(file, std::string(4096, '%')); };
  const auto folder = [](const fs::path& file) { fs::create_directory(file); };
  const auto nothing = [](const fs::path&) {};
  const std::vector<Case> cases = {
      {"a text in its place", text, true, "the file is not a store"},
      {"a folder in its place", folder, true, "a folder is in the place of the store"},
      {"no application group", nothing, false, "there is no folder for the store"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const test::TemporaryDirectory directory;
    row.make(directory / "Vantrel.sqlite");
    const EnvironmentGuard group(
        "VANTREL_GROUP_CONTAINER",
        row.hasContainer ? std::optional(directory.path().string()) : std::nullopt);
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
                ElementsAre("Plans unavailable: The plans could not be opened: " + row.reason));
    EXPECT_THAT(log.text(), MatchesRegex("Unresolved error org\\.vantrel\\.objectstore [0-9]+: " +
                                         row.reason + ", \\{.*\\}\n"));
    // Fetches fail with the same reason.
    const auto plans = context->executeFetchRequest({.entityName = "Planning", .fetchLimit = 1});
    ASSERT_FALSE(plans);
    EXPECT_EQ(plans.error().localizedDescription, row.reason);
    context->insertNewObject("Planning");
    EXPECT_FALSE(context->save());
    // The delegate and its operation are optional.
    for (const auto& silent :
         {std::shared_ptr<DatabaseDelegate>(), std::make_shared<DatabaseDelegate>()}) {
      Database another;
      another.setDelegate(silent);
      EXPECT_NE(another.managedObjectContext(), nullptr);
    }
  }
}

TEST(Database, ReadsTheSensorFormatsInPlace) {
  Database database;
  auto* context = database.staticManagedObjectContext();
  ASSERT_NE(context, nullptr);
  const auto file = Bundle::mainBundle().root() / "VantrelStatic.sqlite";
  const auto before = test::readFile(file);
  const auto formats = context->executeFetchRequest({.entityName = "SensorFormat"});
  ASSERT_TRUE(formats) << formats.error().localizedDescription;
  ASSERT_GE(formats->size(), 15U);
  std::set<std::pair<double, double>> sizes;
  for (const auto& format : *formats) {
    sizes.emplace(std::get<double>(format->valueForKey("width")),
                  std::get<double>(format->valueForKey("height")));
    EXPECT_GE(format->valueForKey("width"), format->valueForKey("height"));
    EXPECT_EQ(std::get<std::string>(format->valueForKey("uniqueIdentifier")).size(), 36U);
  }
  EXPECT_TRUE(sizes.contains({36, 24}));
  formats->front()->setValueForKey("mine", "name");
  EXPECT_EQ(test::codeOf(context->save()), StoreErrorCode::kPermission);
  // No files beside it: its folder may be read-only.
  EXPECT_EQ(test::readFile(file), before);
  for (const char* suffix : {"-shm", "-wal"}) EXPECT_FALSE(fs::exists(file.string() + suffix));
}

// The bundle is located once per process: each case needs a process.
TEST(DatabaseDeathTest, LoadsTheSingleModelAndReportsAMissingOne) {
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

}  // namespace
}  // namespace vantrel
