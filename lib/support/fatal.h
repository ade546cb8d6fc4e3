// SPDX-License-Identifier: MIT
//
// The one way to end a run on an error.
#pragma once

#include <stdexcept>

namespace molva {

// Receives the formatted message and must not return: it ends the process or throws.
using FatalHandler = void (*)(const char* message);

// Formats the message and hands it to the current handler. The default handler prints it to
// standard error, adds a newline, flushes, and ends the process with status 0, so the status never
// tells failure from success; what was already printed to standard output is flushed on the way.
[[noreturn, gnu::format(printf, 1, 2)]] void FatalError(const char* format, ...);

// Replaces the handler (null restores the default) and returns the one replaced. A host program or
// a test installs one that throws; everything the library allocated is owned, so nothing leaks.
FatalHandler SetFatalHandler(FatalHandler handler);

// While one lives, fatal errors of its thread are thrown instead, whatever the handler.
struct ThrownError : std::runtime_error {
  using std::runtime_error::runtime_error;
};
class CatchableErrors {
 public:
  CatchableErrors();
  ~CatchableErrors();
  CatchableErrors(const CatchableErrors&) = delete;
  CatchableErrors& operator=(const CatchableErrors&) = delete;
};

// Ends a run that is over early without an error message of its own, its answer printed to standard
// output: help, or a command line that was refused. By default the process ends with status 0.
[[noreturn]] void EndRun();

// Receives such an end and must not return, as for fatal errors.
using EndHandler = void (*)();
EndHandler SetEndHandler(EndHandler handler);

}  // namespace molva
