#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

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
  LookupCommands() {
    needApplication();
    writeFile(key_, "s/cret\nsecond line\n");
  }

  ProgramResult ask(const LoopbackServer& server, const std::string& command,
                    const std::string& input = {}, const std::string& wait = "30") const {
    std::istringstream words(command);
    return run({std::istream_iterator<std::string>(words), {}},
               {{"VANTREL_LOOKUP_ADDRESS", server.address()},
                {"VANTREL_LOOKUP_WAIT", wait},
                {"XDG_CACHE_HOME", home_ / "cache"}},
               input);
  }

  const TemporaryDirectory home_;
  const std::string key_ = home_ / "key";
};

TEST_F(LookupCommands, AskWithTheRightAccountAndTellWhatWasFound) {
  LoopbackServer server(
      {{kElevation, {httpReply(R"({"srtm3": 206})")}},
       {kZone, {httpReply(R"({"timezoneId": "Asia/Tokyo"})")}},
       {kGoogle, {httpReply(R"({"status": "OK", "results": [{"elevation": 12.6}]})")}}});
  const std::string own = "&username=vantrel&token=" + WebServiceRequestOperation().token();
  const std::string altitude = "lookup altitude -33.5 .25";
  const std::string zone = "lookup timezone -33.5 .25";
  const std::string place = "?lat=-33.500000&lng=0.250000";
  const std::string atGoogle = "?locations=-33.500000,0.250000";
  const struct {
    std::string command;
    std::string output;
    std::string request;
    std::string input = {};
  } cases[] = {
      {altitude, "206m\n", kElevation + place + own},
      {zone, "Asia/Tokyo\n", kZone + place + own},
      {altitude + " --username m/e", "206m\n", kElevation + place + "&username=m%2Fe"},
      {zone + " --username me --key-file -", "Asia/Tokyo\n", kZone + place + "&username=me&token=k",
       "k"},
      {altitude + " --google --key-file " + key_, "13m\n", kGoogle + atGoogle + "&key=s%2Fcret"},
      {"defaults write --standard lookup_username me", "", ""},
      {"defaults write --standard lookup_keyFile " + key_, "", ""},
      {altitude, "206m\n", kElevation + place + "&username=me&token=s%2Fcret"},
      {altitude + " --username you", "206m\n", kElevation + place + "&username=you"},
  };
  std::vector<std::string> requests;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    const auto result = ask(server, c.command, c.input);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output, c.output);
    if (!c.request.empty()) requests.push_back(c.request);
    EXPECT_EQ(server.requests(), requests);
  }
}

TEST_F(LookupCommands, NameTheServicesOwnMessageButNoAccount) {
  const std::string altitude = "lookup altitude 1 2";
  const std::string zone = "lookup timezone 1 2";
  const std::string google = altitude + " --google --key-file " + key_;
  const std::string obstacle = "obstacle set --altitude auto --latitude 1 --longitude 2";
  const std::string overLimit =
      R"({"status": {"message": "the limit of 1000 credits for vantrel is over", "value": 19}})";
  const std::string nothing = R"({"status": {"message": "no\nresult found", "value": 15}})";
  const std::string denied = R"({"status": "REQUEST_DENIED", "error_message": "bad s/cret"})";
  const struct {
    std::string command;
    std::string reply;
    int exitCode;
    const char* message;
  } cases[] = {
      {altitude, overLimit, 69, "GeoNames: the limit of 1000 credits for *** is"},
      {zone, nothing, 65, "GeoNames: no result found"},
      {zone, "<html>", 65, "GeoNames: The answer is not JSON"},
      {zone, R"({"timezoneId": null})", 65, "the service knows none there"},
      {zone, R"({"timezoneId": "../Mo\non"})", 65, "no zone \"../Mo on\""},
      {google, denied, 69, "Google: bad ***\n"},
      {google, R"({"status": "ZERO_RESULTS"})", 69, "Google: ZERO_RESULTS"},
      {"lookup altitude 91 2", "", 64, "LAT \"91\""},
      {altitude + " --google", "", 64, "needs a key of your own"},
      {altitude + " --key-file " + key_, "", 64, "belongs to a user"},
      {altitude + " --username me --key-file /nowhere", "", 66, "/nowhere: No such file"},
      {"plan add --name x --timezone auto", "", 64, "of which place?"},
      {"plan add --timezone auto --date x --latitude 1 --longitude 2", "", 64, "--date"},
      {"observer set --altitude auto", "", 64, "of which place?"},
      {obstacle, R"({"srtm3": -32768})", 66, "no altitude is known there"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command + " " + c.reply);
    const Reply reply{httpReply(c.reply)};
    LoopbackServer server(
        std::map<std::string, Reply>{{kElevation, reply}, {kZone, reply}, {kGoogle, reply}});
    const auto result = ask(server, c.command);
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_THAT(result.errors, HasSubstr(c.message));
    EXPECT_TRUE(isOneLine(result.errors)) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(server.requests().size(), c.reply.empty() ? 0u : 1u);
  }
  expectRefused({"lookup", "altitude", "1", "2", "--username", ""}, 64, "must not be empty");
  EXPECT_FALSE(std::filesystem::exists(store()));
}

TEST_F(LookupCommands, WaitForABoundedTimeOnly) {
  LoopbackServer server({{kElevation, {"", Reply::After::kHang}},
                         {kGoogle, {httpReply(R"({"status": "OK", "results": []})")}}});
  const std::string altitude = "lookup altitude 1 2";
  for (const auto& command : {altitude, altitude + " --google --key-file " + key_}) {
    const auto result = ask(server, command, {}, "0.3");
    EXPECT_EQ(result.exitCode, 69);
    EXPECT_THAT(result.errors, HasSubstr("no answer came in time"));
  }
  for (const auto& [address, exitCode] :
       {std::pair("http://127.0.0.1:1", 69), {"http://mirror.example", 64}}) {
    const EnvironmentGuard elsewhere("VANTREL_LOOKUP_ADDRESS", address);
    EXPECT_EQ(run({"lookup", "altitude", "1", "2"}).exitCode, exitCode);
  }
}

TEST_F(LookupCommands, FillPlansAndPinsOnRequest) {
  LoopbackServer server({{kElevation, {httpReply(R"({"srtm3": 206})")}},
                         {kZone, {httpReply(R"({"timezoneId": "Asia/Tokyo"})")}}});
  const auto added = ask(server,
                         "plan add --date 2026-07-15T12:00 --timezone auto --latitude 35.6 "
                         "--longitude 139.7 --json");
  EXPECT_THAT(added.output, HasSubstr(R"("localDate": "2026-07-15T12:00:00+09:00")"));
  const auto plan = add({"--name", "x", "--latitude", "1", "--longitude", "2"});
  EXPECT_EQ(ask(server, "plan edit " + plan + " --timezone auto").exitCode, 0);
  EXPECT_THAT(run({"plan", "show", plan}).output, HasSubstr("Asia/Tokyo"));

  ask(server, "observer set --latitude 1 --longitude 2 --accuracy -1");
  EXPECT_EQ(ask(server, "observer set --altitude auto").exitCode, 0);
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
