#pragma once

#include "base/Error.h"

namespace vantrel {

/// What a run ends with, after the numbers of <sysexits.h>.
enum ExitCode : int {
  kExitDone = 0,           ///< Also when nothing was found.
  kExitUsage = 64,         ///< The command line is wrong; also an ambiguous plan.
  kExitBadData = 65,       ///< What was read makes no sense.
  kExitMissing = 66,       ///< No such store, plan or key.
  kExitUnavailable = 69,   ///< A handler or service is not there.
  kExitInternal = 70,      ///< A fault of the program itself.
  kExitCannotCreate = 73,  ///< An output file or folder cannot be made.
  kExitInputOutput = 74,   ///< Reading or writing failed half-way.
  kExitTryAgain = 75,      ///< Something else holds the store.
  kExitPermission = 77,
};

/// A failure of the command line itself: `what` went wrong and `why`, ending with `code`.
Error failure(ExitCode code, const std::string& what, const std::string& why);

/// The exit code for an input that could not be opened or read, by its errno.
ExitCode exitCodeForReading(int error);

/// The exit code for an error of any subsystem.
ExitCode exitCodeForError(const Error& error);

}  // namespace vantrel
