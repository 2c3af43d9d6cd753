#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/archive/KeyedUnarchiver.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

using Limits32 = std::numeric_limits<std::int32_t>;

Expected<KeyedUnarchiver> unarchiver(const std::string& content) {
  return KeyedUnarchiver::unarchiverWithData(std::as_bytes(std::span(content)));
}

KeyedUnarchiver fixture(const std::string& name) {
  return unarchiver(test::readFile(test::testData("archives/" + name))).value();
}

/// An archive of one object with these keys.
Data archiveOf(const PropertyList& object) {
  auto list = PropertyList::dictionary();
  auto top = PropertyList::dictionary();
  top.set("root", PropertyList::uid(1));
  list.set("$top", top);
  list.set("$objects", PropertyList::array(std::vector{PropertyList::string("$null"), object}));
  return list.binaryData();
}

TEST(KeyedUnarchiver, ReadsForeignArchives) {
  const auto complex = fixture("NSKeyedUnarchiver-ComplexTest.plist");
  const auto entries = complex.root().dictionary();
  ASSERT_EQ(entries.size(), 4U);
  EXPECT_EQ(complex.root().className(), "NSDictionary");
  EXPECT_EQ(entries[1].first.string(), "string");
  EXPECT_EQ(entries[1].second.string(), "hello");
  const auto elements = entries[0].second.array();
  ASSERT_EQ(elements.size(), 4U);
  EXPECT_EQ(elements[0].className(), "NSNull");
  EXPECT_EQ(elements[2].value().asInteger(), 34545);
  EXPECT_EQ(elements[3].dictionary().at(0).second.string(), "val");
  EXPECT_EQ(entries[2].second.decodeObjectForKey("NS.relative").string(), "index.xml");
  EXPECT_EQ(entries[3].second.uuid()->front(), std::byte{0x71});  // by plistlib
  EXPECT_FALSE(entries[3].second.data());
  EXPECT_FALSE(complex.error());

  // XML, where references are dictionaries.
  std::vector<std::string> words;
  for (const auto& word : fixture("NSKeyedUnarchiver-ArrayTest.plist").root().array()) {
    words.push_back(word.string().value_or("?"));
  }
  EXPECT_THAT(words, testing::ElementsAre("baa", "baa", "black", "sheep"));

  const auto cover = fixture("swift-module-class.archive").root();
  EXPECT_EQ(cover.className(), "Cover");
  EXPECT_EQ(cover.decodeObjectForKey("text").string(), "default cover");
}

TEST(KeyedUnarchiver, ConvertsNumbers) {
  struct Case {
    PropertyList value;
    double asDouble;
    float asFloat;
    bool asBool;
    std::optional<std::int32_t> asInt32;
    std::optional<std::int64_t> asInt64;
  };
  using List = PropertyList;
  const float infinite = std::numeric_limits<float>::infinity();
  const Case cases[] = {
      {{}, 0, 0, false, 0, 0},
      {List::real(-2.75), -2.75, -2.75F, true, -2, -2},
      {List::real(0.1), 0.1, 0.1F, true, 0, 0},
      {List::integer(7), 7, 7, true, 7, 7},
      {List::integer(0), 0, 0, false, 0, 0},
      {List::boolean(true), 1, 1, true, 1, 1},
      {List::integer(Limits32::min()), -0x1p31, -0x1p31F, true, Limits32::min(), Limits32::min()},
      {List::integer(2147483648), 0x1p31, 0x1p31F, true, {}, 2147483648},
      {List::real(2147483647.9), 2147483647.9, 0x1p31F, true, Limits32::max(), Limits32::max()},
      {List::real(-1e300), -1e300, -infinite, true, {}, {}},
      {List::real(0x1p63), 0x1p63, 0x1p63F, true, {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.asDouble);
    auto object = List::dictionary();
    object.set("k", c.value);
    const auto archive = KeyedUnarchiver::unarchiverWithData(archiveOf(object));
    ASSERT_TRUE(archive);
    const auto root = archive->root();
    EXPECT_EQ(root.decodeDoubleForKey("k"), c.asDouble);
    EXPECT_EQ(root.decodeFloatForKey("k"), c.asFloat);
    EXPECT_EQ(root.decodeBoolForKey("k"), c.asBool);
    EXPECT_EQ(root.decodeInt64ForKey("k"), c.asInt64.value_or(0));
    EXPECT_EQ(archive->error().has_value(), !c.asInt64);
    EXPECT_EQ(root.decodeInt32ForKey("k"), c.asInt32.value_or(0));
    EXPECT_EQ(archive->error().has_value(), !c.asInt32);
  }
}

TEST(KeyedUnarchiver, ReportsWrongTypes) {
  using Node = KeyedUnarchiver::Node;
  struct Case {
    const char* name;
    PropertyList value;
    void (*read)(const Node&);
  };
  const auto scalar = [](const Node& node) { node.decodeDoubleForKey("k"); };
  const auto flag = [](const Node& node) { node.decodeBoolForKey("k"); };
  const auto whole = [](const Node& node) { node.decodeInt32ForKey("k"); };
  const auto object = [](const Node& node) { node.decodeObjectForKey("k"); };
  const Case cases[] = {
      {"a reference for a number", PropertyList::uid(0), scalar},
      {"text for a number", PropertyList::string("1"), scalar},
      {"data for a flag", PropertyList::data({}), flag},
      {"not a number for an integer", PropertyList::real(std::nan("")), whole},
      {"a number for an object", PropertyList::integer(1), object},
      {"a reference to nowhere", PropertyList::uid(2), object},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto keys = PropertyList::dictionary();
    keys.set("k", c.value);
    const auto archive = KeyedUnarchiver::unarchiverWithData(archiveOf(keys));
    ASSERT_TRUE(archive);
    c.read(archive->root());
    ASSERT_TRUE(archive->error());
    EXPECT_THAT(archive->error()->localizedDescription, testing::HasSubstr("\"k\" of object 1"));
  }
  auto unequal = PropertyList::dictionary();
  unequal.set("NS.keys", PropertyList::array(std::vector{PropertyList::uid(0)}));
  const auto archive = KeyedUnarchiver::unarchiverWithData(archiveOf(unequal));
  EXPECT_TRUE(archive->root().dictionary().empty());
  EXPECT_TRUE(archive->error());
}

TEST(KeyedUnarchiver, RejectsListsThatAreNotArchives) {
  for (const char* content :
       {"", "bplist00", "<plist><dict/></plist>", "<plist><string>x</string></plist>",
        "<plist><dict><key>$top</key><dict><key>root</key><dict><key>CF$UID</key>"
        "<integer>1</integer></dict></dict><key>$objects</key><array/></dict></plist>",
        "<plist><dict><key>$top</key><dict/><key>$objects</key><array/></dict></plist>"}) {
    SCOPED_TRACE(content);
    EXPECT_FALSE(unarchiver(content));
  }
}

TEST(KeyedUnarchiver, SurvivesDamage) {
  const auto whole = test::readFile(test::testData("archives/NSKeyedUnarchiver-ComplexTest.plist"));
  std::mt19937 random(11);  // NOLINT: the same damage every time
  int read = 0;
  for (int round = 0; round < 3000; ++round) {
    auto damaged = whole;
    damaged[random() % damaged.size()] ^= static_cast<char>(1U << random() % 8);
    const auto reader = unarchiver(damaged);
    if (!reader) continue;
    const auto root = reader->root();
    root.className();
    for (const auto& [key, value] : root.dictionary()) {
      value.decodeFloatForKey("NS.time");
      value.array();
      read += value.string() == "hello" ? 1 : 0;
    }
  }
  EXPECT_GT(read, 0);
}

}  // namespace
}  // namespace vantrel
