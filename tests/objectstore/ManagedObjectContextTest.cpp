#include "objectstore/ManagedObjectContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <span>

#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::codeOf;
using test::OpenStore;
using test::sqlite;
using testing::ElementsAre;
using testing::MatchesRegex;

class ManagedObjectContextTest : public test::StoreTest {};

FetchRequest plansWhere(const Predicate& predicate) {
  return {.entityName = "Planning", .predicate = predicate};
}

FetchRequest plansByDate(bool ascending) {
  return {.entityName = "Planning", .sortDescriptors = {{"date", ascending}}};
}

FetchRequest from(double date, std::size_t limit) {
  FetchRequest request = plansByDate(true);
  request.predicate = Predicate::greaterThanOrEqual("date", Date(date));
  request.fetchLimit = limit;
  return request;
}

std::shared_ptr<ManagedObject> addImage(OpenStore& store,
                                        const std::shared_ptr<ManagedObject>& plan) {
  auto image = store.context.insertNewObject("Image");
  image->setRelatedObject(plan, "planning");
  return image;
}

TEST_F(ManagedObjectContextTest, KeepsWhatWasSavedForTheNextProgram) {
  const std::string name = "Grün 日本 '\"";
  std::string uri;
  {
    OpenStore writer(file_);
    const auto plan = writer.insertPlan(name, 740633400.25);
    plan->setLatitude(41.39);
    plan->setTimezone("Europe/Madrid");
    EXPECT_THAT(plan->objectID().URIRepresentation(),
                MatchesRegex("x-coredata:///Planning/t[0-9A-F-]{36}[0-9]+"));
    ASSERT_TRUE(writer.context.save());
    uri = plan->objectID().URIRepresentation();
    for (const char* notes : {"once", "twice"}) {
      plan->setNotes(notes);
      ASSERT_TRUE(writer.context.save()) << notes;
    }
    EXPECT_EQ(uri, "x-coredata://" + (*writer.store)->metadata().uuid + "/Planning/p1");
  }
  EXPECT_EQ(sqlite(file_,
                   "SELECT Z_PK, Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE IS NULL, ZNAME,"
                   " ZTIMEZONE, length(ZUNIQUEIDENTIFIER) FROM ZPLANNING"),
            "1|4|3|740633400.25|41.39|1|" + name + "|Europe/Madrid|36");
  OpenStore reader(file_);
  const auto plan = reader.planNamed(name);
  ASSERT_TRUE(plan);
  EXPECT_EQ(*reader.context.objectWithURI(uri), plan);
  EXPECT_EQ(plan->date(), Date(740633400.25));
  EXPECT_EQ(plan->longitude(), std::nullopt);
  EXPECT_FALSE(reader.context.hasChanges()) << "loading is no change, and gives no identifier";
}

// The rows: what is done in memory to saved plans, whose numbers are their dates.
TEST_F(ManagedObjectContextTest, CountsPendingChangesInFetches) {
  savePlans({{"e5", 5}, {"c3", 3}, {"a1", 1}, {"d4", 4}, {"b2", 2}});
  using Change = std::function<void(OpenStore&)>;
  const auto dated = [](const char* name, const std::optional<Date>& date) -> Change {
    return [=](OpenStore& store) { store.planNamed(name)->setDate(date); };
  };
  const Change nothing = [](OpenStore&) {};
  const Change renamed = [](OpenStore& store) { store.planNamed("c3")->setName("x"); };
  const Change deleted = [](OpenStore& s) { s.context.deleteObject(s.planNamed("b2")); };
  const Change inserted = [](OpenStore& store) { store.insertPlan("n3", 3); };
  const Change passing = [](OpenStore& s) { s.context.deleteObject(s.insertPlan("n3", 3)); };
  const FetchRequest all = {.entityName = "Planning"};
  struct Case {
    const char* name;
    Change change;
    FetchRequest request;
    const char* expected;
    std::size_t count;
  };
  const std::vector<Case> cases = {
      {"nothing", nothing, from(2, 3), "b2 c3 d4", 4},
      {"moved into the range", dated("a1", Date(3.5)), from(2, 3), "b2 c3 a1", 5},
      {"moved out of the range", dated("c3", Date(1)), from(2, 3), "b2 d4 e5", 3},
      {"moved within the range", dated("b2", Date(4.5)), from(2, 3), "c3 d4 b2", 4},
      {"deleted", deleted, from(2, 3), "c3 d4 e5", 3},
      {"inserted", inserted, from(2, 3), "b2 c3 n3", 5},
      {"inserted and deleted", passing, from(2, 3), "b2 c3 d4", 4},
      {"date taken away", dated("c3", {}), plansWhere(Predicate::isNil("date")), "c3", 1},
      {"by the new name", renamed, plansWhere(Predicate::equal("name", "x")), "x", 1},
      {"by the old name", renamed, plansWhere(Predicate::equal("name", "c3")), "", 0},
      {"no order: that of the keys", dated("c3", Date(9)), all, "e5 c3 a1 d4 b2", 5},
      {"no order: the new ones last", inserted, all, "e5 c3 a1 d4 b2 n3", 6},
      {"absent last descending", dated("d4", {}), plansByDate(false), "e5 c3 b2 a1 d4", 5},
      {"equals by their keys", dated("a1", Date(5)), plansByDate(true), "b2 c3 d4 e5 a1", 5},
      {"nothing equals an absent value", renamed, plansWhere(Predicate::equal("notes", {})), "", 0},
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
      {"changed again", [&] { plan->setName("b"); }, true},
      {"and deleted", [&] { store.context.deleteObject(plan); }, true},
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
      {"changed by both", changed, false, true, "a theirs\nb -"},
      {"deleted here, changed there", changed, true, true, "a theirs\nb -"},
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
    a->setNotes("mine");
    if (row.deletesHere) store.context.deleteObject(a);
    EXPECT_EQ(codeOf(store.context.save()) == StoreErrorCode::kConflict, row.isConflict);
    EXPECT_EQ(store.context.hasChanges(), row.isConflict) << "they stay in memory";
    EXPECT_EQ(a->managedObjectContext() != nullptr, row.isConflict);
    EXPECT_EQ(sqlite(file, "SELECT ZNAME || ' ' || coalesce(ZNOTES, '-') FROM ZPLANNING"),
              row.stored);
  }
}

TEST_F(ManagedObjectContextTest, FollowsRelationshipsAndTheirDeleteRules) {
  OpenStore store(file_);
  const auto a = store.insertPlan("a", 1);
  const auto b = store.insertPlan("b", 2);
  const auto poi = store.context.insertNewObject("CustomPoi");
  std::vector<std::shared_ptr<ManagedObject>> images;
  for (const auto& plan : {a, a, a, b}) images.push_back(addImage(store, plan));
  images[0]->setRelatedObject(poi, "customPoi");
  EXPECT_THAT(a->relatedObjects("images"), ElementsAre(images[0], images[1], images[2]));
  EXPECT_EQ(a->imageCount(), 3U) << "none is saved yet";
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, "SELECT ZPLANNING || ':' || coalesce(ZCUSTOMPOI, '-') FROM ZIMAGE"),
            "1:1\n1:-\n1:-\n2:-");
  EXPECT_THAT(a->relatedObjects("images"), ElementsAre(images[0], images[1], images[2]));

  images[2]->setRelatedObject(b, "planning");
  store.context.deleteObject(images[1]);
  for (const char* state : {"pending", "saved"}) {
    SCOPED_TRACE(state);
    const auto counts = store.context.countsOfRelatedObjects({a, b}, "images");
    EXPECT_THAT(*counts, ElementsAre(1, 2));
    EXPECT_EQ(a->imageCount(), 1U);
    EXPECT_EQ(b->imageCount(), 2U);
    ASSERT_TRUE(store.context.save());
  }
  EXPECT_EQ(images[2]->relatedObject("planning"), b);
  EXPECT_FALSE(images[2]->setRelatedObject(poi, "planning")) << "no plan";

  // A plan takes its pictures along, even those that belong to a point too.
  store.context.deleteObject(a);
  EXPECT_EQ(poi->countOfRelatedObjects("images"), 0U);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, "SELECT Z_PK FROM ZIMAGE"), "3\n4");
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
  // Values that name a file of their own, as the phone keeps large ones; the second reaches out.
  const auto folder = directory_ / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
  std::filesystem::create_directories(folder);
  test::writeFile(folder / "7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31", "outside");
  for (const std::string name :
       {"7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31", "../../Vantrel.sqlite/../Vantrel.sqlit"}) {
    EXPECT_EQ(
        sqlite(file_, "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZDATA) VALUES (3, 1, CAST(x'02' || '" +
                          name + "' || x'00' AS BLOB))"),
        "");
  }
  // As another model keeps them.
  EXPECT_EQ(sqlite(file_, "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZDATA) VALUES (3, 1, x'FFD8')"), "");
  OpenStore store(file_);
  const auto images = *store.context.executeFetchRequest({.entityName = "Image"});
  std::vector<Value> data;
  for (const auto& image : images) data.push_back(image->valueForKey("data"));
  const auto bytes = [](std::string_view text) {
    const auto span = std::as_bytes(std::span(text));
    return Value(std::vector(span.begin(), span.end()));
  };
  EXPECT_THAT(data, ElementsAre(Value(picture), bytes(""), Value(), bytes("outside"), Value(),
                                bytes("\xFF\xD8")));
}

TEST_F(ManagedObjectContextTest, FindsObjectsByURI) {
  OpenStore store(file_);
  const auto plan = store.insertPlan("a", 1);
  const std::string temporary = plan->objectID().URIRepresentation();
  ASSERT_TRUE(store.context.save());
  const std::string uuid = (*store.store)->metadata().uuid;
  const std::string start = "x-coredata://" + uuid + "/Planning/p";
  EXPECT_EQ(*store.context.objectWithURI(start + "1"), plan);
  for (const auto& uri : {start + "2", "x-coredata://" + uuid + "/Image/p1"}) {
    EXPECT_EQ(*store.context.objectWithURI(uri), nullptr) << uri;
  }
  for (const auto& uri : {temporary, start, start + "1x", start + "0", start + "-1",
                          start + "18446744073709551617", "x-coredata://" + uuid + "/Z_METADATA/p1",
                          "x-coredata://" + std::string(36, 'A') + "/Planning/p1",
                          "vantrel://" + uuid + "/Planning/p1", std::string()}) {
    EXPECT_EQ(codeOf(store.context.objectWithURI(uri)), StoreErrorCode::kInvalidURI) << uri;
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
      {"key", plansWhere(Predicate::isNil("colour"))},
      {"sort key", {.entityName = "Planning", .sortDescriptors = {{"colour", true}}}},
      {"kind of value", plansWhere(Predicate::equal("date", "1"))},
      {"bytes",
       {.entityName = "Image", .predicate = Predicate::equal("data", std::vector<std::byte>(1))}},
      {"SQL in a key", plansWhere(Predicate::isNil("name\" OR 1=1 --"))},
  };
  for (const auto& [name, request] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(codeOf(store.context.executeFetchRequest(request)), StoreErrorCode::kInvalidRequest);
    EXPECT_EQ(codeOf(store.context.countForFetchRequest(request)), StoreErrorCode::kInvalidRequest);
  }
}

}  // namespace
}  // namespace vantrel
