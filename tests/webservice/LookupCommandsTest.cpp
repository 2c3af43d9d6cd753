#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/CommandLineFixture.h"
#include "today/Application.h"
#include "webservice/LoopbackServer.h"
#include "webservice/WebServiceRequestOperation.h"

namespace vantrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string kElevation = "/srtm3JSON";
const std::string kZone = "/timezoneJSON";
const std::string kGoogle = "/maps/api/elevation/json";

/// `vantrel` and its helper against a server of this test's own.
class LookupCommands : public CommandLineTest {
 protected:
  LookupCommands() { needApplication(); }

  ProgramResult ask(const LoopbackServer& server, const std::vector<std::string>& arguments,
                    const std::string& input = {}) const {
    return run(arguments,
               {{"VANTREL_LOOKUP_ADDRESS", server.address()},
                {"VANTREL_LOOKUP_WAIT", "30"},
                {"XDG_CACHE_HOME", home_ / "cache"},
                {"XDG_CONFIG_HOME", home_ / "config"}},
               input);
  }

  TemporaryDirectory home_;
};

TEST_F(LookupCommands, AskWithTheRightAccountAndTellWhatWasFound) {
  LoopbackServer server(
      {{kElevation, {httpReply(R"({"srtm3": 206})")}},
       {kZone, {httpReply(R"({"timezoneId": "Asia/Tokyo"})")}},
       {kGoogle, {httpReply(R"({"status": "OK", "results": [{"elevation": 12.6}]})")}}});
  const std::string own = "&username=vantrel&token=" + WebServiceRequestOperation().token();
  writeFile(home_ / "key", "s/cret\nsecond line\n");
  const std::string key = home_ / "key";
  const std::string place = "?lat=-33.500000&lng=0.250000";
  const struct {
    std::vector<std::string> arguments;
    std::string output;
    std::string request;
    std::string input = {};
  } cases[] = {
      {{"lookup", "altitude", "-33.5", ".25"}, "206m\n", kElevation + place + own},
      {{"lookup", "timezone", "-33.5", ".25"}, "Asia/Tokyo\n", kZone + place + own},
      {{"lookup", "altitude", "-33.5", ".25", "--username", "m e"},
       "206m\n",
       kElevation + place + "&username=m%20e"},
      {{"lookup", "timezone", "-33.5", ".25", "--username", "me", "--key-file", "-"},
       "Asia/Tokyo\n",
       kZone + place + "&username=me&token=k",
       "k"},
      {{"lookup", "altitude", "-33.5", ".25", "--google", "--key-file", key},
       "13m\n",
       kGoogle + "?locations=-33.500000,0.250000&key=s%2Fcret"},
      {{"defaults", "write", "--standard", "lookup_username", "me"}, "", ""},
      {{"defaults", "write", "--standard", "lookup_keyFile", key}, "", ""},
      {{"lookup", "altitude", "-33.5", ".25"},
       "206m\n",
       kElevation + place + "&username=me&token=s%2Fcret"},
      {{"lookup", "altitude", "-33.5", ".25", "--username", "you"},
       "206m\n",
       kElevation + place + "&username=you"},
  };
  std::vector<std::string> requests;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const auto result = ask(server, c.arguments, c.input);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output, c.output);
    if (!c.request.empty()) requests.push_back(c.request);
    EXPECT_EQ(server.requests(), requests);
  }
}

TEST_F(LookupCommands, NameTheServicesOwnMessageButNoAccount) {
  const std::string overLimit =
      R"({"status": {"message": "the hourly limit of 1000 credits for vantrel has been exceeded", "value": 19}})";
  const std::vector<std::string> altitude = {"lookup", "altitude", "1", "2"};
  const std::vector<std::string> zone = {"lookup", "timezone", "1", "2"};
  writeFile(home_ / "key", "s3cret");
  auto google = altitude;
  google.insert(google.end(), {"--google", "--key-file", home_ / "key"});
  auto withoutKey = altitude;
  withoutKey.emplace_back("--google");
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    std::string reply;
    int exitCode;
    const char* message;
  } cases[] = {
      {"over the limit", altitude, overLimit, 69,
       "GeoNames: the hourly limit of 1000 credits for *** has"},
      {"nothing there", zone, R"({"status": {"message": "no\nresult found", "value": 15}})", 65,
       "GeoNames: no result found"},
      {"not JSON", zone, "<html>", 65, "GeoNames: The answer is not JSON"},
      {"no name", zone, R"({"timezoneId": null})", 65, "the service knows none there"},
      {"unknown name", zone, R"({"timezoneId": "../Mo\non"})", 65, "no zone \"../Mo on\""},
      {"Google's refusal", google, R"({"status": "REQUEST_DENIED", "error_message": "bad s3cret"})",
       69, "Google: bad ***\n"},
      {"Google's status alone", google, R"({"status": "ZERO_RESULTS"})", 69,
       "Google: ZERO_RESULTS"},
      {"no such place", {"lookup", "altitude", "91", "2"}, "", 64, "LAT \"91\""},
      {"nobody", {"lookup", "altitude", "1", "2", "--username", ""}, "", 64, "must not be empty"},
      {"Google without a key", withoutKey, "", 64, "needs a key of your own"},
      {"zone of nowhere",
       {"plan", "add", "--name", "x", "--timezone", "auto"},
       "",
       64,
       "of which place?"},
      {"wrong date",
       {"plan", "add", "--timezone", "auto", "--date", "x", "--latitude", "1", "--longitude", "2"},
       "",
       64,
       "--date"},
      {"altitude of nowhere", {"observer", "set", "--altitude", "auto"}, "", 64, "of which place?"},
      {"altitude of the sea",
       {"obstacle", "set", "--altitude", "auto", "--latitude", "1", "--longitude", "2"},
       R"({"srtm3": -32768})",
       66,
       "no altitude is known there"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Reply reply{httpReply(c.reply)};
    LoopbackServer server(
        std::map<std::string, Reply>{{kElevation, reply}, {kZone, reply}, {kGoogle, reply}});
    const auto result = ask(server, c.arguments);
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_THAT(result.errors, HasSubstr(c.message));
    EXPECT_TRUE(isOneLine(result.errors)) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(server.requests().size(), c.reply.empty() ? 0u : 1u);
  }
  EXPECT_FALSE(std::filesystem::exists(store()));
}

TEST_F(LookupCommands, WaitForABoundedTimeOnly) {
  LoopbackServer server({{kElevation, {"", Reply::After::kHang}},
                         {kGoogle, {httpReply(R"({"status": "OK", "results": []})")}}});
  writeFile(home_ / "key", "k");
  std::map<std::string, std::string> environment = {{"VANTREL_LOOKUP_ADDRESS", server.address()},
                                                    {"VANTREL_LOOKUP_WAIT", "0.3"},
                                                    {"XDG_CACHE_HOME", home_ / "cache"}};
  for (const auto& service :
       {std::vector<std::string>{}, {"--google", "--key-file", home_ / "key"}}) {
    std::vector<std::string> arguments = {"lookup", "altitude", "1", "2"};
    arguments.insert(arguments.end(), service.begin(), service.end());
    const auto result = run(arguments, environment);
    EXPECT_EQ(result.exitCode, 69);
    EXPECT_THAT(result.errors, HasSubstr("no answer came in time"));
  }
  environment["VANTREL_LOOKUP_ADDRESS"] = "http://127.0.0.1:1";
  EXPECT_EQ(run({"lookup", "altitude", "1", "2"}, environment).exitCode, 69);
  environment["VANTREL_LOOKUP_ADDRESS"] = "http://mirror.example";
  EXPECT_EQ(run({"lookup", "altitude", "1", "2"}, environment).exitCode, 64);
}

TEST_F(LookupCommands, FillPlansAndPinsOnRequest) {
  LoopbackServer server({{kElevation, {httpReply(R"({"srtm3": 206})")}},
                         {kZone, {httpReply(R"({"timezoneId": "Asia/Tokyo"})")}}});
  const auto added = ask(server, {"plan", "add", "--date", "2026-07-15 12:00", "--timezone", "auto",
                                  "--latitude", "35.6", "--longitude", "139.7", "--json"});
  EXPECT_THAT(added.output, HasSubstr(R"("localDate": "2026-07-15T12:00:00+09:00")"));
  const auto plan = add({"--name", "x", "--latitude", "1", "--longitude", "2"});
  EXPECT_EQ(ask(server, {"plan", "edit", plan, "--timezone", "auto"}).exitCode, 0);
  EXPECT_THAT(run({"plan", "show", plan}).output, HasSubstr("Asia/Tokyo"));

  ask(server, {"observer", "set", "--latitude", "1", "--longitude", "2", "--accuracy", "-1"});
  EXPECT_EQ(ask(server, {"observer", "set", "--altitude", "auto"}).exitCode, 0);
  const auto observer = run({"observer", "show", "--json"}).output;
  EXPECT_THAT(observer, HasSubstr("\"altitude\": 206"));
  EXPECT_THAT(observer, HasSubstr("\"altitudeSetManually\": false"));
  EXPECT_THAT(server.requests(), ElementsAre(HasSubstr("lat=35.6"), HasSubstr(kZone + "?lat=1.0"),
                                             HasSubstr(kElevation + "?lat=1.0")));
}

TEST_F(LookupCommands, TakeNoHelperFromThePath) {
  namespace fs = std::filesystem;
  const auto program = fs::read_symlink("/proc/self/exe").parent_path() / "vantrel";
  fs::create_directories(home_ / "bin");
  fs::copy_file(program, home_ / "bin/vantrel");
  writeFile(home_ / "vantrel-lookup", "#!/bin/sh\necho '{\"altitude\": 1}'\n");
  fs::permissions(home_ / "vantrel-lookup", fs::perms::owner_all);
  fs::current_path(home_.path());
  const auto result = runProgram({home_ / "bin/vantrel", "lookup", "altitude", "1", "2"},
                                 {{"PATH", home_.path().string() + ":."}});
  EXPECT_EQ(result.exitCode, 69);
  EXPECT_THAT(result.errors, HasSubstr("not installed beside"));
}

}  // namespace
}  // namespace vantrel::test
