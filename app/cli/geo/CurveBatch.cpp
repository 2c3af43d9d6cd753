#include "cli/geo/CurveBatch.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "base/FileDescriptor.h"
#include "cli/JsonText.h"
#include "cli/geo/CurveText.h"
#include "cli/geo/PinPair.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kReadSize = 1 << 18;
constexpr std::string_view kBlanks = " \t\r\v\f";

/// Calls `answer` for each line of `file`, and `flush` after the complete lines of each read; stops
/// if `flush` returns false. Lines longer than a block are cut. Returns 0 or an errno.
template <typename Answer, typename Flush>
int forEachLine(int file, Answer answer, Flush flush) {
  std::vector<char> block(kReadSize);
  std::size_t filled = 0;
  bool isCut = false;
  for (;;) {
    const ssize_t count = ::read(file, block.data() + filled, block.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    std::string_view rest(block.data(), filled + static_cast<std::size_t>(count));
    for (auto end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
      if (!isCut) answer(rest.substr(0, end));
      isCut = false;
      rest.remove_prefix(end + 1);
    }
    const bool isEnd = count == 0;
    if (isEnd || rest.size() == block.size()) {
      if (!isCut && !rest.empty()) answer(rest);
      isCut = true;
      rest = {};
    }
    if (!flush() || isEnd) return 0;
    filled = rest.size();
    if (filled > 0) std::memmove(block.data(), rest.data(), filled);
  }
}

/// Splits a line into words; fails unless there are six.
Expected<PinPairTexts> wordsOf(std::string_view line) {
  PinPairTexts words;
  std::size_t count = 0;
  for (auto begin = line.find_first_not_of(kBlanks); begin != std::string_view::npos;
       begin = line.find_first_not_of(kBlanks)) {
    line.remove_prefix(begin);
    const auto word = line.substr(0, line.find_first_of(kBlanks));
    if (count < words.size()) words[count] = word;
    ++count;
    line.remove_prefix(word.size());
  }
  if (count == words.size()) return words;
  return tl::unexpected(
      failure(kExitBadData, "two points", "expected 6 values, got " + std::to_string(count)));
}

class Batch {
 public:
  Batch(bool isLonLat, Console& console) : isLonLat_(isLonLat), console_(console) {}

  void answer(std::string_view line) {
    ++line_;
    const auto begin = line.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos || line[begin] == '#') return;
    const auto pins = wordsOf(line).and_then(
        [&](const PinPairTexts& words) { return pinPairFromArguments(words, isLonLat_); });
    if (!pins) {
      reject(pins.error().localizedDescription);
      return;
    }
    const PinCurve curve(*pins);
    if (curve.direction != PinCurve::Direction::kKnown && withoutDirection_++ == 0) {
      firstWithout_ = line_;
    }
    if (console_.isJson()) {
      answers_ += jsonOfCurve(curve).dump() + "\n";
    } else {
      appendCurveLine(answers_, curve);
    }
  }

  bool flush() {
    console_.print(answers_);
    answers_.clear();
    return console_.flush();
  }

  int finish() {
    flush();
    if (withoutDirection_ > 0) {
      console_.tell("vantrel: geo curve: no azimuths for " + std::to_string(withoutDirection_) +
                    (withoutDirection_ == 1 ? " pair, in line " : " pairs, the first in line ") +
                    std::to_string(firstWithout_) +
                    ": both points are the same, or nearly antipodal\n");
    }
    return exitCode_;
  }

 private:
  void reject(const std::string& why) {
    exitCode_ = kExitBadData;
    answers_ += console_.isJson() ? jsonLine({{"line", line_}, {"error", why}}) : "\n";
    flush();
    console_.tell("vantrel: line " + std::to_string(line_) + ": " + printable(why) + "\n");
  }

  bool isLonLat_;
  Console& console_;
  std::string answers_;
  std::size_t line_ = 0;
  std::size_t withoutDirection_ = 0;
  std::size_t firstWithout_ = 0;
  int exitCode_ = kExitDone;
};

}  // namespace

int answerCurves(const std::string& file, bool isLonLat, Console& console) {
  const bool isStandardInput = file == "-";
  const FileDescriptor opened(isStandardInput ? -1 : ::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  const int descriptor = isStandardInput ? STDIN_FILENO : opened.number();
  const auto fail = [&](int error) {
    return console.fail(failure(exitCodeForReading(error),
                                isStandardInput ? "standard input" : file, std::strerror(error)));
  };
  if (descriptor < 0) return fail(errno);
  if (::isatty(descriptor)) {
    console.note("two points a line, as LAT1 LON1 ALT1 LAT2 LON2 ALT2; Ctrl-D ends");
  }
  Batch batch(isLonLat, console);
  const int error = forEachLine(
      descriptor, [&](std::string_view line) { batch.answer(line); },
      [&] { return batch.flush(); });
  const int exitCode = batch.finish();
  return error == 0 ? exitCode : fail(error);
}

}  // namespace vantrel::cli
