#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/SettingsFile.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::isOneLine;
using testing::HasSubstr;

using DefaultsCommands = test::SettingsTest;

TEST_F(DefaultsCommands, WriteValuesThatAnotherReaderFindsToTheBit) {
  struct Case {
    const char* type;
    const char* argument;
    const char* python;  // What plistlib reads.
    json value;
    const char* text;
  };
  // 0.1 in single precision: Python, struct.unpack("f", struct.pack("f", 0.1)).
  const Case cases[] = {
      {"bool", "off", "False", false, "false"},
      {"int", "-9223372036854775808", "-9223372036854775808", INT64_MIN, "-9223372036854775808"},
      {"int", "+5", "5", 5, "5"},
      {"float", "0.1", "0.10000000149011612", 0.10000000149011612, "0.10000000149011612"},
      {"double", "0.1", "0.1", 0.1, "0.1"},
      {"double", "-1.5e-300", "-1.5e-300", -1.5e-300, "-1.5e-300"},
      {"string", "Ω \x1b[2J\n-1", R"('Ω \x1b[2J\n-1')", "Ω \x1b[2J\n-1", "Ω �[2J\n-1"},
      {"string", "", "''", "", ""},
      {"string", "-.5", "'-.5'", "-.5", "-.5"},
      {"double", "-.5", "-0.5", -0.5, "-0.5"},
      {"date", "2026-07-15T21:40:00.5Z", "datetime.datetime(2026, 7, 15, 21, 40, 0, 500000)",
       "2026-07-15T21:40:00.5Z", "2026-07-15T21:40:00.5Z"},
      {"date", "2026-07-15 23:40", "datetime.datetime(2026, 7, 15, 21, 40)", "2026-07-15T21:40:00Z",
       "2026-07-15T21:40:00Z"},
      {"data", "AAEC /w==", R"(b'\x00\x01\x02\xff')", "AAEC/w==", "AAEC/w=="},
      {"data", "", "b''", "", ""},
  };
  std::string expected;
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const Case& c = cases[i];
    SCOPED_TRACE(std::string(c.type) + " " + c.argument);
    const std::string key = std::to_string(i);
    expectQuiet({"defaults", "write", "--type", c.type, key, c.argument});
    expected += std::string(c.python) + ";";
    EXPECT_EQ(run({"defaults", "read", key}).output, std::string(c.text) + "\n");
    const auto read = json::parse(run({"defaults", "read", key, "--json"}).output);
    const std::string type = c.type == std::string("float") ? "double" : c.type;
    EXPECT_EQ(read, json({{"key", key}, {"type", type}, {"value", c.value}}));
  }
  EXPECT_EQ(python("''.join(repr(p[str(i)]) + ';' for i in range(len(p)))"), expected);
  EXPECT_EQ(fs::status(settings()).permissions(), fs::perms(0600));
}

TEST_F(DefaultsCommands, ReadAndKeepWhatAnotherProgramWrote) {
  const std::string written =
      "{'date': datetime(2024, 2, 29, 12), 'real': 1e300, 'text': 'a<b', "
      "'nested': {'list': [1, True, 'x', datetime(2001, 1, 1)], 'data': b'\\x00\\xff'}}";
  const json expected = json::parse(R"({"defaults": [
      {"key": "date", "type": "date", "value": "2024-02-29T12:00:00Z"},
      {"key": "nested", "type": "dictionary",
       "value": {"list": [1, true, "x", "2001-01-01T00:00:00Z"], "data": "AP8="}},
      {"key": "real", "type": "double", "value": 1e300},
      {"key": "text", "type": "string", "value": "a<b"}]})");
  for (const char* form : {"FMT_XML", "FMT_BINARY"}) {
    SCOPED_TRACE(form);
    dump(written, form, settings());
    EXPECT_EQ(json::parse(run({"defaults", "list", "--json"}).output), expected);
    EXPECT_THAT(run({"defaults", "list"}).output,
                HasSubstr("\nreal    double      1e+300\ntext    string      a<b\n"));

    expectQuiet({"defaults", "write", "new", "1", "--type", "int"});
    expectQuiet({"defaults", "delete", "text"});
    EXPECT_EQ(python("p['real'], p['nested']['list'], len(p)"),
              "1e+300 [1, True, 'x', datetime.datetime(2001, 1, 1, 0, 0)] 4");
  }
}

TEST_F(DefaultsCommands, ConvertAsProgramsDoOnReading) {
  dump("{'no': 'NO', 'real': -2.9, 'text': '12 apples', 'list': [1]}", "FMT_BINARY", settings());
  const auto read = [&](const char* key, const char* type) {
    return run({"defaults", "read", key, "--type", type}).output;
  };
  EXPECT_EQ(read("no", "bool"), "false\n");
  EXPECT_EQ(read("real", "int"), "-2\n");
  EXPECT_EQ(read("real", "float"), "-2.9\n");
  EXPECT_EQ(read("text", "double"), "12.0\n");
  expectRefused({"defaults", "read", "list", "--type", "int"}, 65);
  expectRefused({"defaults", "read", "real", "--type", "string"}, 65);
  expectRefused({"defaults", "read", "text", "--type", "data"}, 65);
  expectRefused({"defaults", "read", "gone", "--type", "int"}, 66);
}

TEST_F(DefaultsCommands, RefuseWhatIsNoValueAndMakeNothing) {
  const std::vector<std::vector<std::string>> usage = {
      {"write", "key"},
      {"write", "", "x"},
      {"write", "key", "\xff"},
      {"write", "key", "1", "--type", "integer"},
      {"write", "key", "1.5", "--type", "int"},
      {"write", "key", "9223372036854775808", "--type", "int"},
      {"write", "key", "nan", "--type", "double"},
      {"write", "key", "-inf", "--type", "float"},
      {"write", "key", "1e39", "--type", "float"},
      {"write", "key", "2", "--type", "bool"},
      {"write", "key", "soon", "--type", "date"},
      {"write", "key", "A=B", "--type", "data"},
      {"read"},
      {"migrate", "now"},
  };
  for (auto command : usage) {
    command.insert(command.begin(), "defaults");
    expectRefused(command);
  }
  for (const char* command : {"read", "delete"}) expectRefused({"defaults", command, "key"}, 66);
  EXPECT_EQ(run({"defaults", "list", "--json"}).output, "{\n  \"defaults\": []\n}\n");
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(DefaultsCommands, LeaveDamagedSettingsAloneUntilTheNextWrite) {
  expectQuiet({"defaults", "write", "key", "1"});
  const std::string damaged = test::readFile(settings()).substr(0, 30);
  test::writeFile(settings(), damaged);
  const std::vector<std::vector<std::string>> reading = {
      {"defaults", "list"}, {"defaults", "read", "key"}, {"defaults", "delete", "key"},
      {"planner", "show"},  {"observer", "show"},        {"obstacle", "show"},
      {"units", "show"},    {"units", "best", "1"},      {"units", "set", "metric"}};
  for (const auto& command : reading) expectRefused(command, 65, settings());
  EXPECT_EQ(test::readFile(settings()), damaged);
  const auto written = run({"planner", "panel", "3"});
  EXPECT_EQ(written.exitCode, 0);
  EXPECT_TRUE(isOneLine(written.errors)) << written.errors;
  EXPECT_THAT(written.errors, HasSubstr("moved aside"));
  EXPECT_EQ(python("p"), "{'planner_infoWindowPage': 3}");
  EXPECT_EQ(test::readFile(settings().string() + ".damaged"), damaged);

  fs::remove(settings());
  fs::create_directory(settings());
  expectRefused({"defaults", "list"}, 73);
  expectRefused({"planner", "panel", "3"}, 73);
}

TEST_F(DefaultsCommands, CopyTheProgramsOwnSettingsIntoTheGroupOnce) {
  expectQuiet({"defaults", "write", "--standard", "global_units", "1", "--type", "int"});
  EXPECT_EQ(test::python(standardSettings(), "p"), "{'global_units': 1}");
  EXPECT_FALSE(fs::exists(settings()));

  const std::string good = test::readFile(standardSettings());
  test::writeFile(standardSettings(), "damaged");
  EXPECT_EQ(run({"defaults", "migrate"}).exitCode, 65);
  EXPECT_FALSE(fs::exists(settings()));
  test::writeFile(standardSettings(), good);

  for (int i = 0; i < 2; ++i) {
    expectQuiet({"defaults", "migrate"});
    EXPECT_EQ(python("dict(sorted(p.items()))"),
              "{'global_units': 1, 'vantrel_migrate_appgroups': True}");
    expectQuiet({"defaults", "write", "--standard", "global_units", "0", "--type", "int"});
  }
}

TEST_F(DefaultsCommands, TakeAValueFromStandardInput) {
  const std::string bytes("\0\xff\n", 3);
  run({"defaults", "write", "data", "--type", "data", "-"}, {}, bytes);
  run({"defaults", "write", "text", "-"}, {}, "two\nlines\n");
  EXPECT_EQ(python("p['data'], p['text'].split()"), R"(b'\x00\xff\n' ['two', 'lines'])");
  EXPECT_EQ(run({"defaults", "write", "text", "-"}, {}, bytes).exitCode, 64);
}

}  // namespace
}  // namespace vantrel
