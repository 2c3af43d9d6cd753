// Stores that other programs wrote: opened as they are, and left as they are but for what is
// changed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "objectstore/StoreError.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::OpenStore;
using test::sqlite;
using testing::ElementsAre;

class ForeignStoreTest : public testing::Test {
 protected:
  /// Two plans, the numbers of entities as another model gives them, no hashes of ours.
  void makeStore(const std::string& more, const std::string& columns = kColumns) {
    fs::remove(file_);
    const std::string error = sqlite(
        file_,
        "CREATE TABLE ZPLANNING (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER," +
            columns +
            ");"
            "CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER"
            " INTEGER, Z_MAX INTEGER);"
            "CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255),"
            " Z_PLIST BLOB);"
            "INSERT INTO Z_PRIMARYKEY VALUES (3, 'Image', 0, 3), (7, 'Planning', 0, 9);"
            "INSERT INTO Z_METADATA VALUES (1, '5443A63D-EF0E-44C2-B216-AE8B5ED2FD09', NULL);"
            "INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZNAME, ZDATE) VALUES (1, 7, 1, 'a',"
            " 1), (2, 7, 3, 'b', 2.5);" +
            more);
    ASSERT_EQ(error, "");
  }

  static constexpr const char* kColumns = "ZDATE TIMESTAMP, ZNAME VARCHAR, ZTIMEZONE VARCHAR";
  static constexpr const char* kImages =
      "CREATE TABLE ZIMAGE (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, ZPLANNING"
      " INTEGER, Z7IMAGES INTEGER, ZOTHER INTEGER);"
      "INSERT INTO ZIMAGE (Z_PK, Z_ENT, Z_OPT) VALUES (1, 3, 1), (2, 3, 1), (3, 3, 1);";

  const test::TemporaryDirectory directory_;
  const fs::path file_ = directory_ / "Vantrel.sqlite";
};

std::string keptParts(const fs::path& file) {
  return sqlite(file,
                "SELECT sql FROM sqlite_schema; SELECT Z_VERSION, Z_UUID, hex(Z_PLIST) FROM"
                " Z_METADATA; SELECT Z_ENT, Z_NAME, Z_SUPER FROM Z_PRIMARYKEY");
}

std::string dropColumn(const char* column) {
  return std::string("ALTER TABLE ZIMAGE DROP COLUMN ") + column + ";";
}

// How the pictures hang on the plans; what is left of them when the first plan goes.
TEST_F(ForeignStoreTest, FindsPicturesHoweverTheyAreStored) {
  const std::string images = kImages;
  const std::string inverse =
      images + dropColumn("Z7IMAGES") + "UPDATE ZIMAGE SET ZPLANNING = 2 - (Z_PK < 3);";
  const std::string hidden =
      images + dropColumn("ZPLANNING") + "UPDATE ZIMAGE SET Z7IMAGES = 2 - (Z_PK < 3);";
  const std::string neither = images + dropColumn("ZPLANNING") + dropColumn("Z7IMAGES");
  const std::string asPicture =
      "ALTER TABLE ZIMAGE RENAME TO ZPICTURE;"
      "UPDATE Z_PRIMARYKEY SET Z_NAME = 'Picture' WHERE Z_ENT = 3;";
  const std::string pairs = "INSERT INTO Z_PAIRS VALUES (1, 1), (1, 2), (2, 2);";
  const std::string ownersJoin =
      neither +
      "CREATE TABLE Z_PAIRS (Z_7PLANNINGS INTEGER, Z_3IMAGES INTEGER, PRIMARY KEY(Z_7PLANNINGS,"
      " Z_3IMAGES));" +
      pairs + "ALTER TABLE Z_PAIRS RENAME TO Z_7IMAGES;";
  const std::string othersJoin =
      neither +
      "CREATE TABLE Z_PAIRS (Z_7PLANNINGS1 INTEGER, Z_3IMAGES INTEGER, Z_FOK_3IMAGES INTEGER,"
      " PRIMARY KEY(Z_7PLANNINGS1, Z_3IMAGES));"
      "INSERT INTO Z_PAIRS VALUES (1, 1, 2048), (1, 2, 3072), (2, 2, 2048);"
      "ALTER TABLE Z_PAIRS RENAME TO Z_3PLANNINGS;";
  struct Case {
    const char* name;
    std::string sql;
    std::vector<std::size_t> counts;  // Empty: it cannot be told.
    const char* leftQuery;
    const char* left;
  };
  const char* keys = "SELECT group_concat(Z_PK, ' ') FROM ZIMAGE";
  const std::vector<Case> cases = {
      {"key in the picture", inverse, {2, 1}, keys, "3"},
      {"key in an entity's table that is not ours",
       inverse + asPicture,
       {2, 1},
       "SELECT group_concat(Z_PK || ':' || coalesce(ZPLANNING, '-') || ':' || Z_OPT, ' ') FROM"
       " ZPICTURE",
       "1:-:2 2:-:2 3:2:1"},
      {"hidden key in the picture", hidden, {2, 1}, keys, "3"},
      {"hidden key in another table",
       hidden + asPicture,
       {2, 1},
       "SELECT group_concat(coalesce(Z7IMAGES, '-'), ' ') FROM ZPICTURE",
       "- - 2"},
      {"table of pairs",
       ownersJoin,
       {2, 1},
       "SELECT (SELECT count(*) FROM ZIMAGE) || ' ' || group_concat(Z_7PLANNINGS || Z_3IMAGES)"
       " FROM Z_7IMAGES",
       "3 22"},
      {"table of pairs named from the other side",
       othersJoin,
       {2, 1},
       "SELECT group_concat(Z_7PLANNINGS1 || Z_3IMAGES) FROM Z_3PLANNINGS",
       "22"},
      {"key in the plan",
       neither + "ALTER TABLE ZPLANNING ADD COLUMN ZIMAGES INTEGER; UPDATE ZPLANNING SET ZIMAGES ="
                 " 3 WHERE Z_PK = 2;",
       {0, 1},
       "SELECT Z_PK || ZIMAGES FROM ZPLANNING",
       "23"},
      {"no pictures at all", "", {0, 0}, "SELECT count(*) FROM ZPLANNING", "1"},
      {"pictures that hang on something unknown", neither, {}, keys, "1 2 3"},
      {"two ways at once", images, {}, keys, "1 2 3"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    makeStore(row.sql);
    const std::string kept = keptParts(file_);
    OpenStore store(file_);
    ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
    EXPECT_TRUE((*store.store)->isForeign());
    const auto plans = *store.context.executeFetchRequest({.entityName = "Planning"});
    const auto counts = store.context.countsOfRelatedObjects(plans, "images");
    if (row.counts.empty()) {
      ASSERT_FALSE(counts);
      EXPECT_EQ(storeErrorCode(counts.error()), StoreErrorCode::kUnsettledRelation);
    } else {
      EXPECT_EQ(counts.value_or(std::vector<std::size_t>()), row.counts);
      EXPECT_EQ(plans[1]->countOfRelatedObjects("images"), row.counts[1]);
    }
    store.context.deleteObject(plans[0]);
    const auto saved = store.context.save();
    ASSERT_TRUE(saved) << saved.error().localizedDescription;
    EXPECT_EQ(sqlite(file_, row.leftQuery), row.left);
    EXPECT_EQ(keptParts(file_), kept);
  }
}

// The model that a store carries in it has the last word over names of tables and columns.
TEST_F(ForeignStoreTest, ReadsTheModelThatAStoreCarries) {
  struct Case {
    const char* name;
    const char* planning;
    const char* image;
    std::vector<std::size_t> counts;
    const char* leftImages;
  };
  const std::vector<Case> cases = {
      {"inverse of another name",
       "relationship images many Image inverse=other delete=cascade",
       "relationship other one Planning inverse=images delete=nullify",
       {1, 2},
       "2 3"},
      {"pictures stay",
       "relationship images many Image inverse=other delete=nullify",
       "relationship other one Planning inverse=images delete=nullify",
       {1, 2},
       "1 2 3"},
      {"plans without pictures",
       "attribute image binary",
       "attribute text string",
       {0, 0},
       "1 2 3"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    makeStore(std::string(kImages) +
              "UPDATE ZIMAGE SET ZPLANNING = 1, Z7IMAGES = 1, ZOTHER = 1 + (Z_PK > 1);"
              "CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB)");
    test::writeFile(directory_ / "Other.model",
                    std::string("model Other\nversions 1\nentity Image\n  ") + row.image +
                        "\nentity Planning\n  attribute name string optional\n  " + row.planning +
                        "\n");
    ASSERT_EQ(test::runProgram({"modelc", directory_ / "Other.model", directory_.path()}).errors,
              "");
    ASSERT_EQ(test::runProgram({"python3", "-c",
                                "import sqlite3, sys, zlib\n"
                                "deflate = zlib.compressobj(wbits=-15)\n"
                                "model = open(sys.argv[2], 'rb').read()\n"
                                "c = sqlite3.connect(sys.argv[1])\n"
                                "c.execute('INSERT INTO Z_MODELCACHE VALUES (?)',"
                                " [deflate.compress(model) + deflate.flush()])\n"
                                "c.commit()",
                                file_, directory_ / "Other.momd/Other1.mom"})
                  .errors,
              "");
    OpenStore store(file_);
    ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
    const auto plans = *store.context.executeFetchRequest({.entityName = "Planning"});
    EXPECT_EQ(
        store.context.countsOfRelatedObjects(plans, "images").value_or(std::vector<std::size_t>()),
        row.counts);
    store.context.deleteObject(plans[0]);
    ASSERT_TRUE(store.context.save());
    EXPECT_EQ(sqlite(file_, "SELECT group_concat(Z_PK, ' ') FROM ZIMAGE"), row.leftImages);
    EXPECT_EQ(sqlite(file_, "SELECT count(*) FROM Z_MODELCACHE"), "1");
  }
}

TEST_F(ForeignStoreTest, ServesWhatItCanAndRefusesWhatHasNoPlace) {
  makeStore("");
  const std::string before = test::readFile(file_);
  {
    OpenStore store(file_);
    EXPECT_EQ(store.names({.entityName = "Planning",
                           .predicate = Predicate::greaterThanOrEqual("date", Date(2)),
                           .sortDescriptors = {{"date", true}}}),
              "b");
    EXPECT_EQ(store.names({.entityName = "Planning", .predicate = Predicate::isNil("notes")}),
              "a b")
        << "a missing column reads absent";
    EXPECT_EQ(store.names({.entityName = "Planning", .sortDescriptors = {{"latitude", false}}}),
              "a b");
    EXPECT_EQ(store.names({.entityName = "CustomCamera"}), "") << "a missing table is empty";
  }
  EXPECT_EQ(test::readFile(file_), before);

  OpenStore store(file_);
  struct Case {
    const char* name;
    std::function<void()> change;
    bool isSaved;
  };
  const std::vector<Case> cases = {
      {"a column that is there", [&] { store.planNamed("b")->setName("B"); }, true},
      {"a missing column", [&] { store.planNamed("a")->setNotes("n"); }, false},
      {"a missing column, and another change",
       [&] {
         store.planNamed("a")->setLatitude(1);
         store.planNamed("B")->setDate(Date(9));
       },
       false},
      {"a new record whose identifier has no place", [&] { store.insertPlan("c", 1); }, false},
      {"a missing table", [&] { store.context.insertNewObject("CustomCamera"); }, false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    row.change();
    const auto saved = store.context.save();
    EXPECT_EQ(saved.has_value(), row.isSaved);
    if (!saved) {
      EXPECT_EQ(storeErrorCode(saved.error()), StoreErrorCode::kNoPlace);
    }
    EXPECT_EQ(sqlite(file_,
                     "SELECT group_concat(ZNAME || Z_OPT || ' ' || ZDATE, ', ') FROM"
                     " ZPLANNING; SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 7"),
              "a1 1, B4 2.5\n9");
    store.context.reset();
  }
}

TEST_F(ForeignStoreTest, TellsNewerStoresFromStrangers) {
  const auto identified = [](const char* identifier) {
    return std::string("UPDATE Z_METADATA SET Z_PLIST = '<plist><dict><key>") +
           "NSStoreModelVersionIdentifiers</key><array><string>" + identifier +
           "</string></array></dict></plist>';";
  };
  struct Case {
    const char* name;
    std::string sql;
    std::string columns;
    std::optional<StoreErrorCode> error;
  };
  const std::string fewer = "ZDATE TIMESTAMP, ZNAME VARCHAR";
  const std::vector<Case> cases = {
      {"has what is needed", "", kColumns, std::nullopt},
      {"a later model that has it too", identified("5"), kColumns, std::nullopt},
      {"no zone", "", fewer, StoreErrorCode::kIncompatible},
      {"no zone, of a later model", identified("5"), fewer, StoreErrorCode::kNewer},
      {"no zone, of an earlier model", identified("3"), fewer, StoreErrorCode::kIncompatible},
      {"no zone, another numbering", identified("5 beta"), fewer, StoreErrorCode::kIncompatible},
      {"a later kind of store", "UPDATE Z_METADATA SET Z_VERSION = 2;", kColumns,
       StoreErrorCode::kNewer},
      {"no plans", "DROP TABLE ZPLANNING;", kColumns, StoreErrorCode::kIncompatible},
      {"no identity", "DELETE FROM Z_METADATA;", kColumns, StoreErrorCode::kDamaged},
      {"no metadata", "DROP TABLE Z_METADATA;", kColumns, StoreErrorCode::kNotAStore},
      {"no numbers", "DROP TABLE Z_PRIMARYKEY;", kColumns, StoreErrorCode::kNotAStore},
      {"damaged metadata", "UPDATE Z_METADATA SET Z_PLIST = x'62706C6973743030FF';", kColumns,
       std::nullopt},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    makeStore(row.sql, row.columns);
    const std::string before = test::readFile(file_);
    {
      const OpenStore store(file_);
      EXPECT_EQ(store.store ? std::nullopt : storeErrorCode(store.store.error()), row.error);
    }
    EXPECT_EQ(test::readFile(file_), before);
  }
}

// A column may hold anything: what is not of its kind reads absent.
TEST_F(ForeignStoreTest, ReadsWrongTypesAsAbsent) {
  const std::string latitude = std::string(kColumns) + ", ZLATITUDE FLOAT";
  makeStore("", latitude);
  struct Case {
    const char* sql;
    Value name;
    Value date;
    Value latitude;
  };
  const std::vector<Case> cases = {
      {"ZNAME = 12.5, ZDATE = 3, ZLATITUDE = 4", "12.5", Date(3), 4.0},
      {"ZNAME = x'FF00', ZDATE = 'soon', ZLATITUDE = 'north'", {}, {}, {}},
      {"ZNAME = '', ZDATE = '740633400.5', ZLATITUDE = '1e400'", "", Date(740633400.5),
       std::numeric_limits<double>::infinity()},
      {"ZNAME = 'a' || char(0) || 'b', ZDATE = x'00', ZLATITUDE = x'31'",
       std::string("a\0b", 3),
       {},
       {}},
      {"Z_ENT = 99, Z_OPT = 'x', ZNAME = 'odd'", "odd", {}, {}},
      {"Z_ENT = NULL, Z_OPT = NULL", "odd", {}, {}},
  };
  OpenStore store(file_);
  for (const auto& row : cases) {
    SCOPED_TRACE(row.sql);
    ASSERT_EQ(sqlite(file_, std::string("UPDATE ZPLANNING SET ") + row.sql + " WHERE Z_PK = 1"),
              "");
    const auto plans = store.context.executeFetchRequest({.entityName = "Planning"});
    ASSERT_TRUE(plans && plans->size() == 2);
    EXPECT_EQ(plans->front()->valueForKey("name"), row.name);
    EXPECT_EQ(plans->front()->valueForKey("date"), row.date);
    EXPECT_EQ(plans->front()->valueForKey("latitude"), row.latitude);
  }
}

std::shared_ptr<ManagedObjectModel> sampleModel(const std::string& version) {
  const auto momd = test::testData("models/SampleModel.momd");
  auto model = *ManagedObjectModel::modelWithContentsOfURL(momd / (version + ".mom"));
  const auto versions = ManagedObjectModel::allVersionHashes(momd);
  for (const auto& [name, hash] : versions.at(version)) {
    model.entityNamed(name)->versionHash = hash;
  }
  return std::make_shared<ManagedObjectModel>(std::move(model));
}

// Real stores of the phone, with sub-entities; V2 was migrated in place and kept a stale name. The
// numbers of rows are what the sqlite3 program counts by Z_ENT.
TEST_F(ForeignStoreTest, UsesStoresOfThePhoneAsTheyAre) {
  for (const auto& [file, version, finest] :
       {std::tuple("stores/SampleModel_V1.sqlite", "SampleModel", "ExpensiveSportCar"),
        {"stores/SampleModel_V2.sqlite", "SampleModel2", "LuxuryCar"}}) {
    SCOPED_TRACE(file);
    fs::copy_file(test::testData(file), file_, fs::copy_options::overwrite_existing);
    const auto model = sampleModel(version);
    const std::string kept = keptParts(test::testData(file));
    const std::string uri =
        "x-coredata://753753D3-A961-4901-AB05-8CC48B1D3853/" + std::string(finest) + "/p14";
    {
      OpenStore store(file_, {}, model);
      ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
      EXPECT_FALSE((*store.store)->isForeign());
      EXPECT_EQ(store.context.countForFetchRequest({.entityName = "Car"}), 125U);
      EXPECT_EQ(store.context.countForFetchRequest({.entityName = "SportCar"}), 10U);
      EXPECT_EQ(store.context.countForFetchRequest({.entityName = finest}), 5U);
      const auto cars = store.context.executeFetchRequest({.entityName = "Car"});
      ASSERT_TRUE(cars && cars->size() == 125);
      EXPECT_EQ((*cars)[13]->objectID().URIRepresentation(), uri);
      EXPECT_EQ((*cars)[13]->valueForKey("isLimitedEdition"), Value(std::int64_t{0}));
      EXPECT_EQ(*store.context.objectWithURI(uri), (*cars)[13]);
      const auto people = store.context.executeFetchRequest(
          {.entityName = "Person", .predicate = Predicate::equal("lastName", "Coster")});
      ASSERT_TRUE(people && people->size() == 1);
      EXPECT_EQ(people->front()->valueForKey("updatedAt"), Value(Date(639503569.638733)));
      std::string owned = "SELECT count(*) FROM ZCAR WHERE ZOWNER = 17";
      const auto owner = (*cars)[0]->relatedObject("owner");
      EXPECT_EQ(std::to_string(owner->countOfRelatedObjects("cars")), sqlite(file_, owned));
    }
    EXPECT_EQ(test::readFile(file_), test::readFile(test::testData(file))) << "after reading";

    OpenStore store(file_, {}, model);
    const auto car = store.context.insertNewObject(finest);
    car->setValueForKey("NEW 1", "numberPlate");
    const auto people = *store.context.executeFetchRequest({.entityName = "Person"});
    people[0]->setValueForKey("Vicky", "firstName");
    car->setRelatedObject(people[0], "owner");
    ASSERT_TRUE(store.context.save());
    EXPECT_EQ(sqlite(file_,
                     "SELECT Z_PK, Z_ENT, Z_OPT, ZOWNER, ZNUMBERPLATE FROM ZCAR ORDER BY"
                     " Z_PK DESC LIMIT 1; SELECT Z_MAX FROM Z_PRIMARYKEY; SELECT Z_OPT,"
                     " ZFIRSTNAME FROM ZPERSON WHERE Z_PK = 1; PRAGMA integrity_check"),
              "126|3|1|1|NEW 1\n126\n0\n0\n20\n2|Vicky\nok");
    EXPECT_EQ(keptParts(file_), kept);
    // The plate is unique there.
    store.context.insertNewObject("Car")->setValueForKey("NEW 1", "numberPlate");
    const auto saved = store.context.save();
    ASSERT_FALSE(saved);
    EXPECT_EQ(storeErrorCode(saved.error()), StoreErrorCode::kDuplicate);
    EXPECT_EQ(sqlite(file_, "SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 1"), "126");
  }
}

}  // namespace
}  // namespace vantrel
