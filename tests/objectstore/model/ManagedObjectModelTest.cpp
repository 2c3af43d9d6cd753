#include "objectstore/model/ManagedObjectModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "platform/archive/KeyedArchiver.h"
#include "platform/archive/PropertyList.h"
#include "platform/system/Bundle.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;

Expected<ManagedObjectModel> modelWithText(std::string_view content) {
  return ManagedObjectModel::modelWithData(std::as_bytes(std::span(content)));
}

/// The text that tests/data/describe_model.py prints of the same model.
std::string description(const ManagedObjectModel& model) {
  std::ostringstream text;
  for (const auto& entity : model.entities()) {
    text << "entity " << entity.name << " "
         << (entity.superentityName.empty() ? "-" : entity.superentityName) << "\n";
    for (const auto& attribute : entity.attributes) {
      const auto* number = std::get_if<std::int64_t>(&attribute.defaultValue);
      text << "  " << attribute.name << " " << static_cast<int>(attribute.type) << " "
           << attribute.isOptional << " " << attribute.isTransient << " "
           << (attribute.storesExternally ? 4 : 0) << " "
           << (number ? std::to_string(*number) : "-") << "\n";
    }
    for (const auto& relationship : entity.relationships) {
      text << "  " << relationship.name << " " << relationship.destinationEntityName << " "
           << relationship.inverseName << " " << relationship.isToMany << " "
           << static_cast<int>(relationship.deleteRule) << "\n";
    }
  }
  text << "versions";
  for (const auto& identifier : model.versionIdentifiers()) text << " " << identifier;
  return text.str() + "\n";
}

TEST(ManagedObjectModel, ReadsModelsAsPythonDoes) {
  const std::string script = test::testData("describe_model.py");
  int count = 0;
  for (const auto& root : {test::testData("models"), Bundle::mainBundle().root()}) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (entry.path().extension() != ".mom") continue;
      SCOPED_TRACE(entry.path());
      const auto model = ManagedObjectModel::modelWithContentsOfURL(entry.path());
      ASSERT_TRUE(model) << model.error().localizedDescription;
      EXPECT_EQ(description(*model), test::pythonSays({script, entry.path()}));
      EXPECT_TRUE(model->versionHashes().empty());
      ++count;
    }
  }
  EXPECT_EQ(count, 9);

  // The copies in stores of the phone.
  const test::TemporaryDirectory directory;
  for (const char* store : {"SampleModel_V1", "SampleModel_V2", "SampleModel3_V1"}) {
    SCOPED_TRACE(store);
    const auto path = test::testData("stores/" + std::string(store) + ".sqlite");
    const auto expected = test::pythonSays({script, path, directory / "copy"});
    const auto model = modelWithText(test::readFile(directory / "copy"));
    ASSERT_TRUE(model) << model.error().localizedDescription;
    EXPECT_EQ(description(*model), expected);
  }
}

TEST(ManagedObjectModel, ReadsTheCurrentVersionOfAFolder) {
  const auto url = test::testData("models/SampleModel.momd");
  const auto model = ManagedObjectModel::modelWithContentsOfURL(url);
  ASSERT_TRUE(model) << model.error().localizedDescription;
  EXPECT_THAT(model->versionIdentifiers(), testing::ElementsAre("1"));
  EXPECT_EQ(model->versionHashes().at("Car")[0], std::byte{0x9e});  // by plistlib
  EXPECT_EQ(model->versionHashes(), ManagedObjectModel::allVersionHashes(url).at("SampleModel"));
  EXPECT_FALSE(model->entityNamed("car"));

  const auto second = ManagedObjectModel::modelWithContentsOfURL(url / "SampleModel2.mom");
  ASSERT_TRUE(second);
  EXPECT_THAT(second->entityNamed("Car")->indexedAttributes,
              testing::ElementsAre("maker", "numberPlate"));
}

TEST(ManagedObjectModel, ChoosesAVersionOrSaysWhyNot) {
  const auto mom = test::readFile(test::testData("models/SampleModel3.momd/SampleModel3.mom"));
  const auto info = [](const std::string& version) {
    auto list = PropertyList::dictionary();
    list.set("NSManagedObjectModel_CurrentVersionName", PropertyList::string(version));
    const auto data = list.binaryData();
    return std::string(reinterpret_cast<const char*>(data.data()), data.size());
  };
  struct Case {
    const char* name;
    std::map<std::string, std::string> files;
    const char* complaint;  ///< Empty when the model can be read.
  };
  const Case cases[] = {
      {"one version, not named", {{"A.mom", mom}}, ""},
      {"one version and its twin", {{"A.mom", mom}, {"A.omo", "momv2$srsraori"}}, ""},
      {"an empty list", {{"A.mom", mom}, {"VersionInfo.plist", "<plist><dict/></plist>"}}, ""},
      {"named", {{"A.mom", "x"}, {"B.mom", mom}, {"VersionInfo.plist", info("B")}}, ""},
      {"two versions, none named", {{"A.mom", mom}, {"B.mom", mom}}, "current"},
      {"nothing", {}, "current"},
      {"missing", {{"A.mom", mom}, {"VersionInfo.plist", info("B")}}, "B.mom"},
      {"elsewhere", {{"A.mom", mom}, {"VersionInfo.plist", info("../A")}}, "VersionInfo"},
      {"damaged list", {{"A.mom", mom}, {"VersionInfo.plist", "bplist00"}}, "VersionInfo"},
      {"no model", {{"A.mom", info("B")}}, "A.mom"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory directory;
    for (const auto& [name, content] : c.files) test::writeFile(directory / name, content);
    const auto model = ManagedObjectModel::modelWithContentsOfURL(directory.path());
    EXPECT_EQ(model.has_value(), !*c.complaint);
    if (!model) {
      EXPECT_THAT(model.error().localizedDescription, testing::HasSubstr(c.complaint));
    }
  }
  EXPECT_FALSE(ManagedObjectModel::modelWithContentsOfURL("/no/such/model.mom"));
}

using Family = std::vector<std::pair<std::string, std::string>>;

/// An archived model of entities, each with the name of its parent or an empty one.
Data familyTree(const Family& family) {
  KeyedArchiver archiver;
  const auto model = archiver.addObject({"NSManagedObjectModel", "NSObject"});
  auto names = PropertyList::array();
  auto entities = PropertyList::array();
  std::map<std::string, KeyedArchiver::Object> byName;
  for (const auto& [name, parent] : family) {
    byName[name] = archiver.addObject({"NSEntityDescription", "NSObject"});
    const auto text = archiver.addValue(PropertyList::string(name));
    byName[name].encodeObject(text, "NSEntityName");
    names.append(text.reference());
    entities.append(byName[name].reference());
  }
  for (const auto& [name, parent] : family) {
    if (!parent.empty()) byName[name].encodeObject(byName[parent], "NSSuperentity");
  }
  const auto dictionary = archiver.addObject({"NSDictionary", "NSObject"});
  dictionary.encode(names, "NS.keys");
  dictionary.encode(entities, "NS.objects");
  model.encodeObject(dictionary, "NSEntities");
  return archiver.archivedDataWithRootObject(model);
}

TEST(ManagedObjectModel, NumbersTheTreeDepthFirstAndRefusesWhatIsNone) {
  const auto model = ManagedObjectModel::modelWithData(familyTree({{"NWActivity", ""},
                                                                   {"b", ""},
                                                                   {"NetworkAttachment", ""},
                                                                   {"z", "b"},
                                                                   {"A", "b"},
                                                                   {"m", "A"}}));
  ASSERT_TRUE(model);
  std::vector<std::string> names;
  for (const auto& entity : model->entities()) names.push_back(entity.name);
  EXPECT_THAT(names, testing::ElementsAre("b", "A", "m", "z", "NetworkAttachment", "NWActivity"));

  Family chain = {{"0", ""}};
  for (int i = 1; i < 5000; ++i) chain.emplace_back(std::to_string(i), std::to_string(i - 1));
  for (const Family& family : {Family{{"A", "A"}}, Family{{"A", "B"}, {"B", "A"}, {"C", ""}},
                               Family{{"A", ""}, {"", ""}}, chain}) {
    EXPECT_FALSE(ManagedObjectModel::modelWithData(familyTree(family)));
  }
}

TEST(ManagedObjectModel, SurvivesDamage) {
  std::mt19937 random(7);  // NOLINT: the same damage every time
  const auto whole = test::readFile(test::testData("models/SampleModel3.momd/SampleModel3_v2.mom"));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(modelWithText(whole.substr(0, size)));
  }
  int read = 0;
  for (int round = 0; round < 2000; ++round) {
    auto damaged = whole;
    damaged[random() % damaged.size()] ^= static_cast<char>(1U << random() % 8);
    if (const auto model = modelWithText(damaged)) read += description(*model).empty() ? 0 : 1;
  }
  EXPECT_GT(read, 0);
}

TEST(ModelCompiler, MakesTheMainModel) {
  const auto url = Bundle::mainBundle().urlForResource("Vantrel", "momd");
  ASSERT_TRUE(url);
  const auto model = ManagedObjectModel::modelWithContentsOfURL(*url);
  ASSERT_TRUE(model) << model.error().localizedDescription;
  EXPECT_THAT(model->versionIdentifiers(), testing::ElementsAre("4"));
  // Types in there: Double 500, Float 600, String 700, Boolean 800, Date 900, Binary 1000.
  EXPECT_EQ(description(*model), test::readFile(test::testData("main_model.txt")));
  EXPECT_THAT(model->entityNamed("Planning")->indexedAttributes, testing::ElementsAre("date"));

  const auto before = ManagedObjectModel::modelWithContentsOfURL(*url / "Vantrel3.mom");
  ASSERT_TRUE(before);
  for (const auto& entity : before->entities()) {
    EXPECT_FALSE(entity.attribute("uniqueIdentifier")) << entity.name;
  }
  const auto versions = ManagedObjectModel::allVersionHashes(*url);
  EXPECT_EQ(versions.at("Vantrel4"), model->versionHashes());
  for (const auto& [entity, hash] : versions.at("Vantrel3")) {
    EXPECT_NE(hash, versions.at("Vantrel4").at(entity)) << entity;
  }
}

TEST(ModelCompiler, SaysWhatIsWrongWithASource) {
  const test::TemporaryDirectory directory;
  struct Case {
    const char* source;
    const char* complaint;  ///< Empty for a good source.
  };
  const std::string head = "model M\nversions 1 2\nentity E\n";
  const Case cases[] = {
      {"attribute a integer16 default=-3\nattribute b boolean default=true # flag", ""},
      {"attribute a double default=0.5 since=2\nattribute s string default=x", ""},
      {"attribute a number", ":4: unknown type \"number\""},
      {"attribute a", ":4: expected a name and a type"},
      {"attribute a string indexd", ":4: unknown option \"indexd\""},
      {"attribute a string external", ":4: only binary"},
      {"attribute a integer16 default=x", ":4: invalid default \"x\""},
      {"attribute a string since=3", ":4: unknown version 3"},
      {"attribute a string\nattribute a date", ":5: duplicate property"},
      {"entity E", ":4: duplicate entity"},
      {"versions 3", ":4: unknown statement \"versions\""},
      {"relationship r many F", "E.r has no matching inverse"},
      {"relationship r many E inverse=q", "E.r has no matching inverse"},
      {"relationship r some E", ":4: expected one or many, got \"some\""},
      {"entity F G", ":4: unknown option \"G\""},
      {"entity F since=3", ":4: unknown version 3"},
      {"relationship r many F\nentity F since=2", "E.r has no matching inverse"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.source);
    test::writeFile(directory / "M.model", head + c.source);
    const auto result = test::runProgram({"modelc", directory / "M.model", directory.path()});
    EXPECT_EQ(result.exitCode, *c.complaint ? 1 : 0) << result.errors;
    EXPECT_THAT(result.errors, testing::HasSubstr(c.complaint));
  }
}

TEST(ModelCompiler, WritesDefaultsAndEntitiesOfLaterVersions) {
  const test::TemporaryDirectory directory;
  test::writeFile(directory / "M.model",
                  "model M\nversions 1 2\nentity E\nattribute i integer64 default=-3\n"
                  "attribute b boolean default=true\nattribute f float default=0.1\n"
                  "attribute s string default=x\nrelationship other one E\n"
                  "entity New since=2\nattribute a date\n");
  ASSERT_EQ(test::runProgram({"modelc", directory / "M.model", directory.path()}).exitCode, 0);
  const auto model = ManagedObjectModel::modelWithContentsOfURL(directory / "M.momd");
  ASSERT_TRUE(model);
  const auto* entity = model->entityNamed("E");
  EXPECT_EQ(entity->attribute("i")->defaultValue, Value(std::int64_t{-3}));
  EXPECT_EQ(entity->attribute("b")->defaultValue, Value(std::int64_t{1}));
  EXPECT_EQ(entity->attribute("f")->defaultValue, Value(static_cast<double>(0.1F)));
  EXPECT_EQ(entity->attribute("s")->defaultValue, Value("x"));
  EXPECT_EQ(entity->relationship("other")->inverseName, "");
  ASSERT_NE(model->entityNamed("New"), nullptr);
  EXPECT_NE(model->entityNamed("New")->attribute("a"), nullptr);
  const auto before = ManagedObjectModel::modelWithContentsOfURL(directory / "M.momd/M1.mom");
  ASSERT_TRUE(before);
  EXPECT_EQ(before->entityNamed("New"), nullptr);
  EXPECT_EQ(before->entityNamed("E")->attribute("a"), nullptr);
}

}  // namespace
}  // namespace vantrel
