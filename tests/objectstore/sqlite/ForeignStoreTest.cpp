// Stores that other programs wrote: opened as they are, and left as they are but for what is
// changed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::codeOf;
using test::OpenStore;
using test::sqlite;

class ForeignStoreTest : public test::StoreTest {
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
};

std::string keptParts(const fs::path& file) {
  return sqlite(file,
                "SELECT sql FROM sqlite_schema; SELECT Z_VERSION, Z_UUID, hex(Z_PLIST) FROM"
                " Z_METADATA; SELECT Z_ENT, Z_NAME, Z_SUPER FROM Z_PRIMARYKEY");
}

std::string dropColumn(const char* column) {
  return std::string("ALTER TABLE ZIMAGE DROP COLUMN ") + column + ";";
}

/// "2 1": how many pictures the plans have, by their keys.
std::string pictureCounts(OpenStore& store) {
  const auto plans = *store.context.executeFetchRequest({.entityName = "Planning"});
  const auto counts = store.context.countsOfRelatedObjects(plans, "images");
  if (codeOf(counts) == StoreErrorCode::kUnsettledRelation) return "unsettled";
  EXPECT_EQ(plans[1]->countOfRelatedObjects("images"), counts->at(1));
  return std::to_string(counts->at(0)) + " " + std::to_string(counts->at(1));
}

// How plans refer to their pictures, and what remains when the first plan is deleted. Pairs may
// refer to a picture that does not exist.
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
  const std::string ownersPairs = neither +
                                  "CREATE TABLE Z_7IMAGES (Z_7PLANNINGS INTEGER, Z_3IMAGES INTEGER,"
                                  " PRIMARY KEY(Z_7PLANNINGS, Z_3IMAGES));"
                                  "INSERT INTO Z_7IMAGES VALUES (1, 1), (1, 2), (2, 2), (2, 9);";
  const std::string othersPairs =
      neither +
      "CREATE TABLE Z_3PLANNINGS (Z_3IMAGES INTEGER, Z_7PLANNINGS1 INTEGER, Z_FOK_3IMAGES INTEGER,"
      " PRIMARY KEY(Z_7PLANNINGS1, Z_3IMAGES));"
      "INSERT INTO Z_3PLANNINGS VALUES (1, 1, 2048), (2, 1, 3072), (2, 2, 2048), (9, 2, 0);";
  const std::string inPlan = neither +
                             "ALTER TABLE ZPLANNING ADD COLUMN ZIMAGES INTEGER;"
                             "UPDATE ZPLANNING SET ZIMAGES = 3 WHERE Z_PK = 2;";
  const std::string keys = "SELECT Z_PK FROM ZIMAGE";
  struct Case {
    const char* name;
    std::string sql;
    const char* counts;
    std::string leftQuery;
    const char* left;
  };
  const std::vector<Case> cases = {
      {"key in the picture", inverse, "2 1", keys, "3"},
      {"key in an entity's table that is not ours", inverse + asPicture, "2 1",
       "SELECT Z_PK, ZPLANNING, Z_OPT FROM ZPICTURE", "1||2\n2||2\n3|2|1"},
      {"hidden key in the picture", hidden, "2 1", keys, "3"},
      {"hidden key in another table", hidden + asPicture, "2 1",
       "SELECT Z_PK, Z7IMAGES FROM ZPICTURE", "1|\n2|\n3|2"},
      {"table of pairs", ownersPairs, "2 1", "SELECT * FROM Z_7IMAGES; " + keys,
       "2|2\n2|9\n1\n2\n3"},
      {"table of pairs named from the other side", othersPairs, "2 1", "SELECT * FROM Z_3PLANNINGS",
       "2|2|2048\n9|2|0"},
      {"key in the plan", inPlan, "0 1", "SELECT Z_PK, ZIMAGES FROM ZPLANNING", "2|3"},
      {"no pictures at all", "", "0 0", "SELECT Z_PK FROM ZPLANNING", "2"},
      {"pictures that hang on something unknown", neither, "unsettled", keys, "1\n2\n3"},
      {"two ways at once", images, "unsettled", keys, "1\n2\n3"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    makeStore(row.sql);
    const std::string kept = keptParts(file_);
    OpenStore store(file_);
    ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
    EXPECT_TRUE((*store.store)->isForeign());
    EXPECT_EQ(pictureCounts(store), row.counts);
    store.context.deleteObject(store.planNamed("a"));
    ASSERT_EQ(codeOf(store.context.save()), std::nullopt);
    EXPECT_EQ(sqlite(file_, row.leftQuery), row.left);
    EXPECT_EQ(keptParts(file_), kept);
  }
}

// The model that a store carries in it has the last word over names of tables and columns.
TEST_F(ForeignStoreTest, ReadsTheModelThatAStoreCarries) {
  const std::string images = "relationship images many Image inverse=other delete=";
  const std::string other = "relationship other one Planning inverse=images delete=nullify";
  struct Case {
    const char* name;
    std::string planning;
    std::string image;
    const char* counts;
    const char* leftImages;
  };
  const std::vector<Case> cases = {
      {"inverse of another name", images + "cascade", other, "1 2", "2\n3"},
      {"pictures stay", images + "nullify", other, "1 2", "1\n2\n3"},
      {"no pictures", "attribute image binary", "attribute text string", "0 0", "1\n2\n3"},
  };
  const char* carry = R"(
import sqlite3, sys, zlib
deflate = zlib.compressobj(wbits=-15)
content = deflate.compress(open(sys.argv[2], "rb").read()) + deflate.flush()
store = sqlite3.connect(sys.argv[1])
store.execute('INSERT INTO Z_MODELCACHE VALUES (?)', [content])
store.commit())";
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    makeStore(std::string(kImages) +
              "UPDATE ZIMAGE SET ZPLANNING = 1, Z7IMAGES = 1, ZOTHER = 1 + (Z_PK > 1);"
              "CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB)");
    const auto source = directory_ / "Other.model";
    test::writeFile(source, "model Other\nversions 1\nentity Image\n" + row.image +
                                "\nentity Planning\nattribute name string\n" + row.planning);
    ASSERT_EQ(test::runProgram({"modelc", source, directory_.path()}).errors, "");
    ASSERT_EQ(test::pythonSays({"-c", carry, file_, directory_ / "Other.momd/Other1.mom"}), "");
    OpenStore store(file_);
    EXPECT_EQ(pictureCounts(store), row.counts);
    store.context.deleteObject(store.planNamed("a"));
    ASSERT_TRUE(store.context.save());
    EXPECT_EQ(sqlite(file_, "SELECT Z_PK FROM ZIMAGE"), row.leftImages);
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
  constexpr auto kNoPlace = StoreErrorCode::kNoPlace;
  struct Case {
    const char* name;
    std::function<void()> change;
    std::optional<StoreErrorCode> error;
  };
  const auto changeBoth = [&] {
    store.planNamed("a")->setLatitude(1);
    store.planNamed("B")->setDate(Date(9));
  };
  const std::vector<Case> cases = {
      {"a column that is there", [&] { store.planNamed("b")->setName("B"); }, std::nullopt},
      {"a missing column", [&] { store.planNamed("a")->setNotes("n"); }, kNoPlace},
      {"a missing column, and another change", changeBoth, kNoPlace},
      {"a new record whose identifier has no place", [&] { store.insertPlan("c", 1); }, kNoPlace},
      {"a missing table", [&] { store.context.insertNewObject("CustomCamera"); }, kNoPlace},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    row.change();
    EXPECT_EQ(codeOf(store.context.save()), row.error);
    EXPECT_EQ(sqlite(file_,
                     "SELECT ZNAME, Z_OPT, ZDATE FROM ZPLANNING;"
                     "SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 7"),
              "a|1|1\nB|4|2.5\n9");
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
    EXPECT_EQ(codeOf(OpenStore(file_).store), row.error);
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
    EXPECT_EQ(codeOf(store.context.save()), StoreErrorCode::kDuplicate);
    EXPECT_EQ(sqlite(file_, "SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 1"), "126");
  }
}

}  // namespace
}  // namespace vantrel
