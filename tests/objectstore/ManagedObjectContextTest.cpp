#include "objectstore/ManagedObjectContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "objectstore/StoreError.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;
using test::sqlite;
using testing::ElementsAre;
using testing::MatchesRegex;

class ManagedObjectContextTest : public testing::Test {
 protected:
  const test::TemporaryDirectory directory_;
  const std::filesystem::path file_ = directory_ / "Vantrel.sqlite";

  void savePlans(const std::vector<std::pair<const char*, double>>& plans) {
    OpenStore store(file_);
    for (const auto& [name, date] : plans) store.insertPlan(name, date);
    ASSERT_TRUE(store.context.save());
  }
  /// The saved file once more, for one row of a table alone.
  std::filesystem::path copyOfFile() {
    const auto copy = directory_ / ("Copy" + std::to_string(++copies_) + ".sqlite");
    std::filesystem::copy_file(file_, copy);
    return copy;
  }

 private:
  int copies_ = 0;
};

const FetchRequest kAll = {.entityName = "Planning"};

FetchRequest from(double date, std::size_t limit) {
  return {.entityName = "Planning",
          .predicate = Predicate::greaterThanOrEqual("date", Date(date)),
          .sortDescriptors = {{"date", true}},
          .fetchLimit = limit};
}

std::shared_ptr<ManagedObject> addImage(OpenStore& store,
                                        const std::shared_ptr<ManagedObject>& plan) {
  auto image = store.context.insertNewObject("Image");
  image->setRelatedObject(plan, "planning");
  return image;
}

template <typename T>
std::optional<StoreErrorCode> codeOf(const Expected<T>& result) {
  return result ? std::nullopt : storeErrorCode(result.error());
}

TEST_F(ManagedObjectContextTest, KeepsWhatWasSavedForTheNextProgram) {
  std::string uri;
  {
    OpenStore writer(file_);
    ASSERT_TRUE(writer.store) << writer.store.error().localizedDescription;
    const auto plan = writer.insertPlan("Grün 日本 '\"", 740633400.25);
    plan->setLatitude(41.39);
    plan->setTimezone("Europe/Madrid");
    EXPECT_THAT(plan->objectID().URIRepresentation(),
                MatchesRegex("x-coredata:///Planning/t[0-9A-F-]{36}[0-9]+"));
    ASSERT_TRUE(writer.context.save());
    uri = plan->objectID().URIRepresentation();
    EXPECT_EQ(uri, "x-coredata://" + (*writer.store)->metadata().uuid + "/Planning/p1");
  }
  EXPECT_EQ(sqlite(file_,
                   "SELECT Z_PK, Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE IS NULL, ZNAME,"
                   " ZTIMEZONE, length(ZUNIQUEIDENTIFIER) FROM ZPLANNING"),
            "1|4|1|740633400.25|41.39|1|Grün 日本 '\"|Europe/Madrid|36");
  OpenStore reader(file_);
  const auto found = reader.context.objectWithURI(uri);
  ASSERT_TRUE(found && *found);
  const auto plan = std::dynamic_pointer_cast<Planning>(*found);
  ASSERT_TRUE(plan);
  EXPECT_EQ(plan->name(), "Grün 日本 '\"");
  EXPECT_EQ(plan->date(), Date(740633400.25));
  EXPECT_EQ(plan->longitude(), std::nullopt);
  EXPECT_FALSE(reader.context.hasChanges()) << "loading is no change, and gives no identifier";
}

// The rows: what is done in memory to saved plans, whose numbers are their dates.
TEST_F(ManagedObjectContextTest, CountsPendingChangesInFetches) {
  savePlans({{"e5", 5}, {"c3", 3}, {"a1", 1}, {"d4", 4}, {"b2", 2}});
  struct Case {
    const char* name;
    std::function<void(OpenStore&)> change;
    FetchRequest request;
    const char* expected;
    std::size_t count;
  };
  const std::vector<Case> cases = {
      {"nothing", [](OpenStore&) {}, from(2, 3), "b2 c3 d4", 4},
      {"moved into the range", [](OpenStore& s) { s.planNamed("a1")->setDate(Date(3.5)); },
       from(2, 3), "b2 c3 a1", 5},
      {"moved out of the range", [](OpenStore& s) { s.planNamed("c3")->setDate(Date(1)); },
       from(2, 3), "b2 d4 e5", 3},
      {"moved within the range", [](OpenStore& s) { s.planNamed("b2")->setDate(Date(4.5)); },
       from(2, 3), "c3 d4 b2", 4},
      {"deleted", [](OpenStore& s) { s.context.deleteObject(s.planNamed("b2")); }, from(2, 3),
       "c3 d4 e5", 3},
      {"inserted", [](OpenStore& s) { s.insertPlan("n3", 3); }, from(2, 3), "b2 c3 n3", 5},
      {"inserted and deleted", [](OpenStore& s) { s.context.deleteObject(s.insertPlan("n3", 3)); },
       from(2, 3), "b2 c3 d4", 4},
      {"date taken away",
       [](OpenStore& s) { s.planNamed("c3")->setDate(std::nullopt); },
       {.entityName = "Planning", .predicate = Predicate::isNil("date")},
       "c3",
       1},
      {"renamed, by name",
       [](OpenStore& s) { s.planNamed("c3")->setName("x"); },
       {.entityName = "Planning", .predicate = Predicate::equal("name", "x")},
       "x",
       1},
      {"renamed, by its old name",
       [](OpenStore& s) { s.planNamed("c3")->setName("x"); },
       {.entityName = "Planning", .predicate = Predicate::equal("name", "c3")},
       "",
       0},
      {"no order: that of the keys, the new ones last",
       [](OpenStore& s) {
         s.insertPlan("n", 0);
         s.planNamed("c3")->setDate(Date(9));
       },
       kAll, "e5 c3 a1 d4 b2 n", 6},
      {"absent first ascending, last descending",
       [](OpenStore& s) { s.planNamed("d4")->setDate(std::nullopt); },
       {.entityName = "Planning", .sortDescriptors = {{"date", false}}},
       "e5 c3 b2 a1 d4",
       5},
      {"equals stay in the order of their keys",
       [](OpenStore& s) { s.planNamed("a1")->setDate(Date(5)); },
       {.entityName = "Planning", .sortDescriptors = {{"date", true}}},
       "b2 c3 d4 e5 a1",
       5},
      {"nothing equals an absent value",
       [](OpenStore&) {},
       {.entityName = "Planning", .predicate = Predicate::equal("notes", {})},
       "",
       0},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const auto file = copyOfFile();
    OpenStore store(file);
    row.change(store);
    EXPECT_EQ(store.names(row.request), row.expected);
    EXPECT_EQ(store.context.countForFetchRequest(row.request), row.count);
    // What was pending is what is stored then.
    ASSERT_TRUE(store.context.save());
    EXPECT_EQ(store.names(row.request), row.expected) << "after saving";
    EXPECT_EQ(OpenStore(file).names(row.request), row.expected) << "read again";
  }
}

TEST_F(ManagedObjectContextTest, TellsChangesFromEqualValues) {
  OpenStore store(file_);
  const auto plan = store.insertPlan("a", 1);
  ASSERT_TRUE(store.context.save());
  struct Case {
    const char* name;
    std::function<void()> change;
    bool hasChanges;
  };
  const std::vector<Case> cases = {
      {"the value it has", [&] { plan->setName("a"); }, false},
      {"another value", [&] { plan->setName("b"); }, true},
      {"the stored value again", [&] { plan->setName("a"); }, false},
      {"an absent one cleared", [&] { plan->setNotes(std::nullopt); }, false},
      {"an absent one made empty", [&] { plan->setNotes(""); }, true},
      {"cleared again", [&] { plan->setNotes(std::nullopt); }, false},
      {"inserted and deleted", [&] { store.context.deleteObject(store.insertPlan("b", 2)); },
       false},
      {"a change, then deleted",
       [&] {
         plan->setName("b");
         store.context.deleteObject(plan);
       },
       true},
      {"reset", [&] { store.context.reset(); }, false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    row.change();
    EXPECT_EQ(store.context.hasChanges(), row.hasChanges);
  }
  EXPECT_EQ(plan->managedObjectContext(), nullptr);
  EXPECT_EQ(plan->name(), "b") << "an object keeps its last values";
  EXPECT_EQ(store.names(), "a");
}

TEST_F(ManagedObjectContextTest, TakesValuesAsTheAttributesKeepThem) {
  OpenStore store(file_);
  const auto camera = store.context.insertNewObject("CustomCamera");
  const auto plan = store.insertPlan("a", 1);
  struct Case {
    const char* name;
    std::shared_ptr<ManagedObject> object;
    const char* key;
    Value value;
    bool isTaken;
    Value expected;
  };
  const std::vector<std::byte> bytes = {std::byte{1}};
  const std::vector<Case> cases = {
      {"integer for a double", plan, "latitude", std::int64_t{41}, true, 41.0},
      {"double narrowed to single precision", camera, "sensorWidth", 23.6, true, double{23.6F}},
      {"any number is a boolean", camera, "isFilm", std::int64_t{7}, true, std::int64_t{1}},
      {"text for a number", plan, "latitude", "41", false, 41.0},
      {"number for a text", plan, "name", 1.5, false, "a"},
      {"number for a date", plan, "date", 1.5, false, Date(1)},
      {"not a number", plan, "latitude", std::nan(""), false, 41.0},
      {"no instant", plan, "date", Date(std::nan("")), false, Date(1)},
      {"infinity", plan, "latitude", std::numeric_limits<double>::infinity(), true,
       std::numeric_limits<double>::infinity()},
      {"bytes for a text", plan, "name", bytes, false, "a"},
      {"nothing", plan, "latitude", {}, true, {}},
      {"unknown key", plan, "colour", "red", false, {}},
      {"a relationship is no attribute", plan, "images", std::int64_t{1}, false, {}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.object->setValueForKey(row.value, row.key), row.isTaken);
    EXPECT_EQ(row.object->valueForKey(row.key), row.expected);
  }
  EXPECT_EQ(store.context.insertNewObject("Nothing"), nullptr);
}

TEST_F(ManagedObjectContextTest, HasOneObjectPerRowAndRefreshesIt) {
  OpenStore first(file_);
  OpenStore second(file_);
  first.insertPlan("a", 1);
  first.insertPlan("b", 2);
  ASSERT_TRUE(first.context.save());
  const auto a = second.planNamed("a");
  const auto b = second.planNamed("b");
  EXPECT_EQ(second.planNamed("a"), a);
  EXPECT_EQ(*second.context.objectWithURI(a->objectID().URIRepresentation()), a);

  first.planNamed("a")->setNotes("from elsewhere");
  first.planNamed("b")->setNotes("from elsewhere");
  ASSERT_TRUE(first.context.save());
  b->setName("mine");
  EXPECT_EQ(a->notes(), std::nullopt) << "nothing changes under the reader's hands";
  EXPECT_EQ(second.names(), "a mine");
  EXPECT_EQ(a->notes(), "from elsewhere");
  EXPECT_EQ(b->notes(), std::nullopt) << "an object with changes of its own is left alone";
}

TEST_F(ManagedObjectContextTest, RefusesToOverwriteWhatOthersChanged) {
  savePlans({{"a", 1}, {"b", 2}});
  const std::string changed =
      "UPDATE ZPLANNING SET ZNOTES = 'theirs', Z_OPT = Z_OPT + 1 WHERE ZNAME = 'a'";
  const std::string deleted = "DELETE FROM ZPLANNING WHERE ZNAME = 'a'";
  struct Case {
    const char* name;
    std::string elsewhere;
    bool deletesHere;
    bool isConflict;
    const char* stored;
  };
  const std::vector<Case> cases = {
      {"changed by both", changed, false, true, "a theirs, b -"},
      {"deleted here, changed there", changed, true, true, "a theirs, b -"},
      {"changed here, deleted there", deleted, false, true, "b -"},
      {"deleted by both", deleted, true, false, "b mine"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const auto file = copyOfFile();
    OpenStore store(file);
    const auto a = store.planNamed("a");
    store.planNamed("b")->setNotes("mine");
    ASSERT_EQ(sqlite(file, row.elsewhere), "");
    if (row.deletesHere) {
      store.context.deleteObject(a);
    } else {
      a->setNotes("mine");
    }
    const auto saved = store.context.save();
    EXPECT_EQ(codeOf(saved) == StoreErrorCode::kConflict, row.isConflict);
    EXPECT_EQ(store.context.hasChanges(), row.isConflict) << "they stay in memory";
    EXPECT_EQ(sqlite(file,
                     "SELECT group_concat(ZNAME || ' ' || coalesce(ZNOTES, '-'), ', ')"
                     " FROM ZPLANNING"),
              row.stored)
        << "all or nothing";
    if (row.isConflict) continue;
    EXPECT_EQ(a->managedObjectContext(), nullptr);
  }
}

// Numbers behind the names: how many pictures the plan or the point has.
TEST_F(ManagedObjectContextTest, FollowsRelationshipsAndTheirDeleteRules) {
  OpenStore store(file_);
  const auto a = store.insertPlan("a", 1);
  const auto b = store.insertPlan("b", 2);
  const auto poi = store.context.insertNewObject("CustomPoi");
  std::vector<std::shared_ptr<ManagedObject>> images;
  for (const auto& plan : {a, a, a, b}) images.push_back(addImage(store, plan));
  images[0]->setRelatedObject(poi, "customPoi");
  EXPECT_EQ(a->imageCount(), 3U) << "none is saved yet";
  EXPECT_THAT(a->relatedObjects("images"), ElementsAre(images[0], images[1], images[2]));
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_,
                   "SELECT group_concat(ZPLANNING || ':' || coalesce(ZCUSTOMPOI, '-'), ' ')"
                   " FROM ZIMAGE"),
            "1:1 1:- 1:- 2:-");
  EXPECT_THAT(a->relatedObjects("images"), ElementsAre(images[0], images[1], images[2]));

  images[2]->setRelatedObject(b, "planning");
  store.context.deleteObject(images[1]);
  const auto counts = [&] {
    return store.context.countsOfRelatedObjects({a, b}, "images")
        .value_or(std::vector<std::size_t>());
  };
  EXPECT_THAT(counts(), ElementsAre(1, 2)) << "pending changes count";
  EXPECT_THAT((std::vector{a->imageCount(), b->imageCount()}), ElementsAre(1, 2));
  ASSERT_TRUE(store.context.save());
  EXPECT_THAT(counts(), ElementsAre(1, 2));
  EXPECT_EQ(images[2]->relatedObject("planning"), b);
  EXPECT_FALSE(images[2]->setRelatedObject(poi, "planning")) << "no plan";

  // A plan takes its pictures along, even those that belong to a point too.
  store.context.deleteObject(a);
  EXPECT_EQ(poi->countOfRelatedObjects("images"), 0U);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, "SELECT group_concat(Z_PK, ' ') FROM ZIMAGE"), "3 4");
  EXPECT_EQ(sqlite(file_, "SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_NAME = 'Image'"), "4");
  EXPECT_FALSE(store.context.hasChanges());

  // A deleted picture leaves its plan alone, and its key is not given again.
  store.context.deleteObject(images[3]);
  const auto next = addImage(store, b);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(next->objectID().primaryKey(), 5);
  EXPECT_THAT(b->relatedObjects("images"), ElementsAre(images[2], next));
}

TEST_F(ManagedObjectContextTest, ReadsLargeValuesOnlyWhenAsked) {
  const std::vector<std::byte> picture(100'000, std::byte{0xD8});
  {
    OpenStore store(file_);
    addImage(store, nullptr)->setValueForKey(picture, "data");
    addImage(store, nullptr)->setValueForKey(std::vector<std::byte>(), "data");
    addImage(store, nullptr);
    ASSERT_TRUE(store.context.save());
  }
  EXPECT_EQ(sqlite(file_, "SELECT hex(substr(ZDATA, 1, 3)), length(ZDATA) FROM ZIMAGE"),
            "01D8D8|100001\n01|1\n|");
  // A value with a file of its own, as the phone keeps large ones.
  const auto folder = directory_ / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
  std::filesystem::create_directories(folder);
  test::writeFile(folder / "7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31", "outside");
  const auto insertNamed = [&](int key, const std::string& name) {
    sqlite(file_, "INSERT INTO ZIMAGE (Z_PK, Z_ENT, Z_OPT, ZDATA) VALUES (" + std::to_string(key) +
                      ", 3, 1, CAST(x'02' || '" + name + "' || x'00' AS BLOB))");
  };
  insertNamed(4, "7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31");
  insertNamed(5, "../../Vantrel.sqlite/../Vantrel.sqlit");
  OpenStore store(file_);
  const auto images = store.context.executeFetchRequest({.entityName = "Image"});
  ASSERT_TRUE(images);
  std::vector<std::string> sizes;
  for (const auto& image : *images) {
    const Value value = image->valueForKey("data");
    const auto* bytes = std::get_if<std::vector<std::byte>>(&value);
    sizes.push_back(bytes ? std::to_string(bytes->size()) : "absent");
  }
  EXPECT_THAT(sizes, ElementsAre("100000", "0", "absent", "7", "absent"));
  EXPECT_EQ(images->front()->valueForKey("data"), Value(picture));
}

TEST_F(ManagedObjectContextTest, FindsObjectsByURI) {
  OpenStore store(file_);
  const auto plan = store.insertPlan("a", 1);
  const std::string temporary = plan->objectID().URIRepresentation();
  ASSERT_TRUE(store.context.save());
  const std::string uuid = (*store.store)->metadata().uuid;
  const std::string start = "x-coredata://" + uuid + "/Planning/p";
  struct Case {
    const char* name;
    std::string uri;
    std::optional<StoreErrorCode> error;
    bool isFound;
  };
  const auto invalid = StoreErrorCode::kInvalidURI;
  const std::vector<Case> cases = {
      {"the plan's", start + "1", std::nullopt, true},
      {"of no row", start + "2", std::nullopt, false},
      {"of another entity's row", "x-coredata://" + uuid + "/Image/p1", std::nullopt, false},
      {"of an unknown entity", "x-coredata://" + uuid + "/Z_METADATA/p1", invalid, false},
      {"of another store", "x-coredata://" + std::string(36, 'A') + "/Planning/p1", invalid, false},
      {"temporary", temporary, invalid, false},
      {"without a key", start, invalid, false},
      {"with more behind the key", start + "1x", invalid, false},
      {"key 0", start + "0", invalid, false},
      {"negative key", start + "-1", invalid, false},
      {"key beyond 64 bits", start + "18446744073709551617", invalid, false},
      {"another scheme", "vantrel://" + uuid + "/Planning/p1", invalid, false},
      {"empty", "", invalid, false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const auto found = store.context.objectWithURI(row.uri);
    EXPECT_EQ(codeOf(found), row.error);
    EXPECT_EQ(found && *found == plan, row.isFound);
  }
  store.context.deleteObject(plan);
  EXPECT_EQ(*store.context.objectWithURI(start + "1"), nullptr) << "it is to be deleted";
}

TEST_F(ManagedObjectContextTest, LeavesObjectsThatOutliveItAlone) {
  std::shared_ptr<Planning> saved;
  std::shared_ptr<ManagedObject> image;
  {
    OpenStore store(file_);
    saved = store.insertPlan("a", 1);
    ASSERT_TRUE(store.context.save());
    saved->setName("b");
    image = addImage(store, saved);
  }
  EXPECT_EQ(saved->managedObjectContext(), nullptr);
  EXPECT_EQ(saved->name(), "b");
  EXPECT_EQ(saved->entity().name, "Planning") << "it keeps its model";
  saved->setName("c");
  EXPECT_EQ(saved->imageCount(), 0U);
  EXPECT_EQ(image->relatedObject("planning"), nullptr);
  EXPECT_EQ(OpenStore(file_).names(), "a");
}

TEST_F(ManagedObjectContextTest, RefusesRequestsThatTheModelDoesNotKnow) {
  OpenStore store(file_);
  const std::vector<std::pair<const char*, FetchRequest>> cases = {
      {"entity", {.entityName = "Nothing"}},
      {"key", {.entityName = "Planning", .predicate = Predicate::isNil("colour")}},
      {"sort key", {.entityName = "Planning", .sortDescriptors = {{"colour", true}}}},
      {"kind of value", {.entityName = "Planning", .predicate = Predicate::equal("date", "1")}},
      {"bytes",
       {.entityName = "Image", .predicate = Predicate::equal("data", std::vector<std::byte>(1))}},
      {"SQL in a key",
       {.entityName = "Planning", .predicate = Predicate::isNil("name\" OR 1=1 --")}},
  };
  for (const auto& [name, request] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(codeOf(store.context.executeFetchRequest(request)), StoreErrorCode::kInvalidRequest);
    EXPECT_EQ(codeOf(store.context.countForFetchRequest(request)), StoreErrorCode::kInvalidRequest);
  }
}

}  // namespace
}  // namespace vantrel
