#include "platform/archive/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "support/Guards.h"

namespace vantrel {
namespace {

using test::bigEndian;

std::span<const std::byte> bytesOf(std::string_view text) {
  return std::as_bytes(std::span(text));
}

std::string textOf(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

Expected<PropertyList> parse(std::string_view text) {
  return PropertyList::propertyListWithData(bytesOf(text));
}

/// The list as Python's plistlib prints it. It must write the same bytes, for which all reals must
/// have 64 bits, the only size it knows.
std::string seenByPython(const PropertyList& list) {
  const test::TemporaryDirectory directory;
  test::writeFile(directory / "list", textOf(list.binaryData()));
  EXPECT_EQ(test::python(directory / "list",
                         "plistlib.dumps(p, fmt=plistlib.FMT_BINARY, sort_keys=False) == "
                         "open(sys.argv[1], 'rb').read()"),
            "True");
  return test::python(directory / "list", "p");
}

/// A binary list from its objects' bytes, with four-byte references and the first object as root.
std::string binaryList(const std::vector<std::string>& objects) {
  std::string list = "bplist00";
  std::string offsets;
  for (const auto& object : objects) {
    offsets += bigEndian(list.size(), 4);
    list += object;
  }
  const auto table = list.size();
  return list + offsets + bigEndian(0x0404, 8) + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
         bigEndian(table, 8);
}

std::string reference(std::size_t index) {
  return bigEndian(index, 4);
}

TEST(PropertyList, WritesEveryKindAsPythonReadsIt) {
  auto list = PropertyList::dictionary();
  list.set("true", PropertyList::boolean(true));
  list.set("minus one", PropertyList::integer(-1));
  list.set("large", PropertyList::integer(2978888609));
  list.set("lowest", PropertyList::integer(std::numeric_limits<std::int64_t>::min()));
  list.set("real", PropertyList::real(0.1));
  list.set("half", PropertyList::real(0.5));
  list.set("shared", PropertyList::string("half"));
  list.set("long", PropertyList::string(std::string(300, 'a')));
  list.set("text", PropertyList::string("Peñón 🌅"));
  list.set("date", PropertyList::date(Date(742069876.5)));
  list.set("data", PropertyList::data(bytesOf({"\0\xff", 2})));
  list.set("uid", PropertyList::uid(3));
  list.set("array",
           PropertyList::array(std::vector{PropertyList::string("a"), PropertyList::dictionary()}));
  const std::string seen =
      "{'true': True, 'minus one': -1, 'large': 2978888609, 'lowest': -9223372036854775808, "
      "'real': 0.1, 'half': 0.5, 'shared': 'half', 'long': '" +
      std::string(300, 'a') +
      "', 'text': 'Peñón 🌅', 'date': datetime.datetime(2024, 7, 7, 18, 31, 16, "
      "500000), 'data': b'\\x00\\xff', 'uid': UID(3), 'array': ['a', {}]}";
  EXPECT_EQ(seenByPython(list), seen);
  auto again = PropertyList::propertyListWithData(list.binaryData()).value();
  EXPECT_EQ(seenByPython(again), seen);
  EXPECT_EQ(again["uid"].asUid(), 3U);
  EXPECT_EQ(again["array"].items().at(1).kind(), PropertyList::Kind::kDictionary);
  EXPECT_FALSE(again["true"].asInteger());
  EXPECT_FALSE(again["minus one"].asReal());
  EXPECT_EQ(again["missing"].kind(), PropertyList::Kind::kNull);
  const auto before = again["true"];
  again.set("true", PropertyList::boolean(false));
  EXPECT_EQ(before.asBoolean(), true) << "a value taken out before stays as it was";
  // All other keys keep their place and type, the number of their bits included.
  EXPECT_EQ(seenByPython(again), "{'true': False" + seen.substr(seen.find(',')));
}

TEST(PropertyList, KeepsTypesAndBits) {
  using namespace std::string_literals;
  // 1.5 and 0, exact in 32 bits, in both sizes; a date with the same bits; NaNs; null; 2^64 - 1;
  // -0.0; 0.1; strings with NUL.
  const std::vector<std::string> objects = {
      "\x22\x3f\xc0\0\0"s,
      "\x23\x3f\xf8\0\0\0\0\0\0"s,
      "\x22\0\0\0\0"s,
      "\x23\0\0\0\0\0\0\0\0"s,
      "\x33\x3f\xf8\0\0\0\0\0\0"s,
      "\x22\x7f\xa0\0\1"s,
      "\x33\x7f\xf0\0\0\0\0\0\1"s,
      "\0"s,
      "\x14\0\0\0\0\0\0\0\0\xff\xff\xff\xff\xff\xff\xff\xff"s,
      "\x23\x80\0\0\0\0\0\0\0"s,
      "\x23\x3f\xb9\x99\x99\x99\x99\x99\x9a"s,
      "\x53q\0r"s,
      "\x63\0q\xd8\x3d\xde\0"s,
  };
  std::string array(1, static_cast<char>(0xa0 + objects.size()));
  for (std::size_t i = 1; i <= objects.size(); ++i) array += reference(i);
  std::vector<std::string> all = {array};
  all.insert(all.end(), objects.begin(), objects.end());
  const auto read = parse(binaryList(all));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->items().at(1).asReal(), 1.5);
  EXPECT_FALSE(read->items().at(1).asDate());
  EXPECT_EQ(read->items().at(4).asDate(), Date(1.5));
  const PropertyList made[] = {PropertyList::realOfSinglePrecision(1.5F), PropertyList::real(1.5),
                               PropertyList::realOfSinglePrecision(0), PropertyList::real(0),
                               PropertyList::date(Date(1.5))};
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const auto expected = "bplist00" + objects[i];
    SCOPED_TRACE(testing::PrintToString(objects[i]));
    EXPECT_TRUE(textOf(read->items().at(i).binaryData()).starts_with(expected));
    if (i >= std::size(made)) continue;
    EXPECT_TRUE(textOf(made[i].binaryData()).starts_with(expected));
  }
  EXPECT_EQ(parse(binaryList({"\xc1" + reference(1), "\x08"}))->items().size(), 1U) << "a set";
  // Integers take the fewest bytes.
  const auto wide = parse(binaryList({"\x13\0\0\0\0\0\0\1\xff"s})).value();
  EXPECT_TRUE(textOf(wide.binaryData()).starts_with("bplist00\x11\1\xff"s));
}

TEST(PropertyList, ReadsXml) {
  const auto list = parse(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//A//DTD PLIST "
      "1.0//EN\" \"http://example.org/p.dtd\">\n<plist version=\"1.0\"><!-- it's --><dict>"
      "<key>n</key><integer>-7</integer><key>r</key><real>1.25</real><key>t</key><true/>"
      "<key>s</key><string>a &amp; &#x1F600;<![CDATA[<b>]]></string><key>e</key><array/>"
      "<key>d</key><date>2024-06-21T03:30:00Z</date><key>D</key><date>2131-01-01T00:00:00Z</"
      "date><key>u</key><dict><key>CF$UID</key>"
      "<integer>5</integer></dict></dict></plist>");
  ASSERT_TRUE(list);
  EXPECT_EQ((*list)["n"].asInteger(), -7);
  EXPECT_EQ((*list)["r"].asReal(), 1.25);
  EXPECT_EQ((*list)["t"].asBoolean(), true);
  EXPECT_EQ((*list)["s"].asString(), "a & 😀<b>");
  EXPECT_EQ((*list)["e"].kind(), PropertyList::Kind::kArray);
  EXPECT_EQ((*list)["d"].asDate(), Date(740633400));
  EXPECT_EQ((*list)["D"].asDate(), Date(4102358400));
  EXPECT_EQ(textOf((*list)["r"].binaryData()).substr(8, 3), "\x23\x3f\xf4") << "of 64 bits";
}

TEST(PropertyList, RejectsListsBeyondItsLimits) {
  const auto chain = [](std::size_t depth, std::size_t width) {
    std::vector<std::string> objects;
    for (std::size_t i = 1; i <= depth; ++i) {
      objects.emplace_back(1, static_cast<char>(0xa0 + width));
      for (std::size_t n = 0; n < width; ++n) objects.back() += reference(i);
    }
    objects.emplace_back("\x08");
    return binaryList(objects);
  };
  const auto repeated = [](const char* text, int times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
  };
  const std::string huge("\x13\x10\0\0\0\0\0\0\0", 9);  // 2^60
  EXPECT_TRUE(parse(chain(255, 1))) << "as deep as may be";
  EXPECT_TRUE(parse(chain(12, 2))) << "shared within reason";
  const auto deepXml = [&](int depth) {
    return "<plist>" + repeated("<array>", depth) + "<true/>" + repeated("</array>", depth) +
           "</plist>";
  };
  EXPECT_TRUE(parse(textOf(parse(deepXml(255)).value().binaryData())));
  const std::pair<const char*, std::string> cases[] = {
      {"too deep", chain(256, 1)},
      {"deep enough for the stack", chain(200000, 1)},
      {"each level doubles", chain(40, 2)},
      {"an array in itself", binaryList({"\xa1" + reference(0)})},
      {"a cycle of two", binaryList({"\xa1" + reference(1), "\xa1" + reference(0)})},
      {"number as key", binaryList({"\xd1" + reference(1) + reference(1), "\x10\x05"})},
      {"huge array", binaryList({"\xaf" + huge})},
      {"huge dictionary", binaryList({"\xdf" + huge})},
      {"huge data", binaryList({"\x4f" + huge})},
      {"huge text", binaryList({"\x6f" + huge})},
      {"half a pair", binaryList({"\x61\xd8\x3d"})},
      {"the second half first", binaryList({std::string("\x62\xde\0\xd8\x3d", 5)})},
      {"a byte beyond ASCII", binaryList({"\x51\xe9"})},
      {"an integer of 128 bits", binaryList({"\x14" + std::string(16, '\1')})},
      {"a real of 16 bits", binaryList({"\x21\1\1"})},
      {"a number cut off", binaryList({"\x13\1\1"})},
      {"a reference to nowhere", binaryList({"\xa1" + reference(9)})},
      {"deep XML", deepXml(256)},
      {"open XML", "<plist>" + repeated("<array>", 200000)},
      {"ends hidden in a comment",
       "<plist>" + repeated("<array><!---></array>-->", 300) + repeated("</array>", 300)},
      {"in a document type", "<plist>" + repeated("<array><!DOCTYPE x [</array>]>", 100000)},
      {"in an attribute", "<plist>" + repeated("<array a='></array>'>", 100000)},
      {"empty", ""},
      {"mark alone", "bplist00"},
      {"text", "hello"},
  };
  for (const auto& [name, list] : cases) EXPECT_FALSE(parse(list)) << name;
}

TEST(PropertyList, SurvivesDamage) {
  std::mt19937 random(20240621);  // NOLINT: the same damage every time
  for (const char* name :
       {"archives/NSKeyedUnarchiver-ComplexTest.plist",
        "archives/NSKeyedUnarchiver-ArrayTest.plist", "defaults/group.BeReal.plist"}) {
    SCOPED_TRACE(name);
    const auto whole = test::readFile(test::testData(name));
    ASSERT_TRUE(parse(whole));
    const bool isXml = whole.starts_with("<?xml");
    for (std::size_t size = 0; size < whole.size(); ++size) {
      // An XML list is complete before its last end tag.
      const bool mayRead = isXml && whole.rfind("</dict>") + 7 <= size;
      EXPECT_TRUE(mayRead || !parse(whole.substr(0, size))) << size;
    }
    for (int round = 0; round < 3000; ++round) {
      auto damaged = whole;
      for (int flips = 0; flips < 3; ++flips) {
        damaged[random() % damaged.size()] ^= static_cast<char>(1U << random() % 8);
      }
      // A list that can still be read must be safe to walk and to write.
      if (const auto list = parse(damaged)) {
        EXPECT_FALSE(list->binaryData().empty());
        for (const auto& [key, value] : list->entries()) EXPECT_LE(value.count(), whole.size());
      }
    }
  }
}

TEST(PropertyList, ReportsWhyAFileCannotBeRead) {
  const test::TemporaryDirectory directory;
  const auto missing = PropertyList::propertyListWithContentsOfURL(directory / "none.plist");
  EXPECT_EQ(missing.error().code, ENOENT);
  test::writeFile(directory / "bad.plist", "bplist00");
  const auto bad = PropertyList::propertyListWithContentsOfURL(directory / "bad.plist");
  EXPECT_THAT(bad.error().localizedDescription, testing::HasSubstr("bad.plist"));
  EXPECT_FALSE(PropertyList::propertyListWithContentsOfURL(directory.path()));
}

}  // namespace
}  // namespace vantrel
