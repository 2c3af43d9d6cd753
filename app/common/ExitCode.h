#pragma once

#include "base/Error.h"

namespace vantrel {

/// Exit codes of all programs, with the numbers of <sysexits.h>.
enum ExitCode : int {
  kExitDone = 0,           ///< Also if a list is empty.
  kExitUsage = 64,         ///< Wrong command line, or an ambiguous name of a record.
  kExitBadData = 65,       ///< The input is invalid.
  kExitMissing = 66,       ///< Store, record or key not found.
  kExitUnavailable = 69,   ///< A program or service is not available.
  kExitInternal = 70,      ///< A fault of the program itself, or out of memory.
  kExitCannotCreate = 73,  ///< Cannot create an output file or folder.
  kExitInputOutput = 74,   ///< Reading or writing failed.
  kExitTryAgain = 75,      ///< Another program has locked the store.
  kExitPermission = 77,
};

/// Returns an error with the message "`what`: `why`", for which `exitCodeForError` returns `code`.
Error failure(ExitCode code, const std::string& what, const std::string& why);

/// Returns the exit code for an input that could not be opened or read; `error` is the errno.
ExitCode exitCodeForReading(int error);

/// Returns the exit code for an error of any subsystem.
ExitCode exitCodeForError(const Error& error);

}  // namespace vantrel
