#include "cli/lookup/PlaceService.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <vector>

#include "base/FileDescriptor.h"
#include "base/StringFormat.h"
#include "cli/JsonText.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

struct ChildResult {
  int exitCode = 0;  ///< 128 + the number of the signal that killed it.
  std::string output;
};

std::string readToEnd(int file) {
  std::string text;
  std::array<char, 4096> bytes{};
  for (;;) {
    const ssize_t count = ::read(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(bytes.data(), static_cast<std::size_t>(count));
  }
}

int exitCodeOf(pid_t child) {
  constexpr int kSignalled = 128;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

/// Runs a program, without a shell, until it exits and returns its standard output; it inherits
/// standard input and error. Fails with kExitUnavailable if it cannot be started.
Expected<ChildResult> outputOfProgram(const std::filesystem::path& program,
                                      std::vector<std::string> arguments) {
  const auto cannotStart = [&](int code) {
    return tl::unexpected(failure(kExitUnavailable, program.string(), std::strerror(code)));
  };
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return cannotStart(errno);
  const FileDescriptor readEnd(pipe[0]);
  FileDescriptor writeEnd(pipe[1]);

  std::string name = program.filename().string();
  std::vector<char*> argv = {name.data()};
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, writeEnd.number(), STDOUT_FILENO);
  pid_t child = 0;
  const int error = ::posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return cannotStart(error);
  // Only the child may hold the write end, so that reading ends when the child exits.
  writeEnd = FileDescriptor();
  std::string output = readToEnd(readEnd.number());
  return ChildResult{exitCodeOf(child), std::move(output)};
}

std::vector<std::string> argumentsFor(const std::string& subject, LocationCoordinate2D place,
                                      const PlaceService& service) {
  std::vector<std::string> arguments;
  if (service.google) arguments.emplace_back("--google");
  if (service.username) arguments.push_back("--username=" + *service.username);
  if (service.keyFile) arguments.push_back("--key-file=" + *service.keyFile);
  constexpr int kDecimals = 6;
  // After "--" a minus sign does not start an option.
  arguments.insert(arguments.end(), {"--", subject, decimalText(place.latitude, kDecimals),
                                     decimalText(place.longitude, kDecimals)});
  return arguments;
}

/// Returns the path of vantrel-lookup: in the folder of this program or under libexec, never in the
/// current folder or the PATH.
Expected<std::filesystem::path> lookupProgram() {
  constexpr const char* kName = "vantrel-lookup";
  std::error_code error;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* place : {".", VANTREL_LIBEXEC_FROM_BIN}) {
    const auto program = (folder / place / kName).lexically_normal();
    if (!folder.empty() && std::filesystem::is_regular_file(program, error)) return program;
  }
  return tl::unexpected(
      failure(kExitUnavailable, kName, "not found; is the installation complete?"));
}

/// Runs vantrel-lookup and returns its answer, an object with the value of `subject`.
Expected<Json> lookUp(const std::string& subject, LocationCoordinate2D place,
                      const PlaceService& service) {
  const std::string what = "lookup " + subject;
  constexpr double kMostLatitude = 90;
  constexpr double kMostLongitude = 180;
  // A stored place may have any coordinates.
  if (!(std::fabs(place.latitude) <= kMostLatitude &&
        std::fabs(place.longitude) <= kMostLongitude)) {
    return tl::unexpected(failure(kExitBadData, what, "the place is not on Earth"));
  }
  const auto program = lookupProgram();
  if (!program) return tl::unexpected(program.error());
  const auto ended = outputOfProgram(*program, argumentsFor(subject, place, service));
  if (!ended) return tl::unexpected(ended.error());
  Json answer = Json::parse(ended->output, nullptr, false);
  if (!answer.is_object()) {
    return tl::unexpected(failure(kExitInternal, what, "vantrel-lookup exited without an answer"));
  }
  if (ended->exitCode == kExitDone) return answer;
  // Messages of a service may have several lines.
  return tl::unexpected(failure(static_cast<ExitCode>(ended->exitCode), what,
                                printable(answer.value("error", "failed"))));
}

}  // namespace

Expected<std::optional<float>> altitudeOfPlace(LocationCoordinate2D place,
                                               const PlaceService& service) {
  return lookUp("altitude", place, service).map([](const Json& answer) {
    const auto altitude = answer.find("altitude");
    return altitude != answer.end() && altitude->is_number() ? std::optional(altitude->get<float>())
                                                             : std::nullopt;
  });
}

Expected<TimeZone> timeZoneOfPlace(LocationCoordinate2D place, const PlaceService& service) {
  return lookUp("timezone", place, service).and_then([](const Json& answer) -> Expected<TimeZone> {
    const std::string name = answer.value("timezone", Json()).is_string()
                                 ? answer["timezone"].get<std::string>()
                                 : std::string();
    if (const auto zone = TimeZone::timeZoneWithName(name)) return *zone;
    const std::string why = name.empty()
                                ? "the service knows no time zone there"
                                : "time zone \"" + printable(name) + "\" not found on this system";
    return tl::unexpected(failure(kExitBadData, "lookup timezone", why));
  });
}

}  // namespace vantrel::cli
