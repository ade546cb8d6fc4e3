// SPDX-License-Identifier: MIT
//
// Every error exit of the library and the program passes through FatalError, every other early end
// through EndRun.
#include "lib/support/fatal.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "lib/support/alloc.h"

namespace molva {
namespace {

void PrintAndExit(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  std::fflush(stderr);
  std::exit(0);
}

void ExitWithStatusZero() { std::exit(0); }

FatalHandler current_handler = PrintAndExit;
EndHandler current_end = ExitWithStatusZero;

thread_local int throwing_scopes = 0;

}  // namespace

// Memory may be the very thing that ran out, so a message is formatted in place. One that quotes a
// long name or value gets a block of its own, and is cut when that cannot be had.
void FatalError(const char* format, ...) {
  std::array<char, 1024> room;
  Array<char> block;
  std::va_list arguments, arguments_again;
  va_start(arguments, format);
  va_copy(arguments_again, arguments);
  const int length = std::vsnprintf(room.data(), room.size(), format, arguments);
  if (length >= static_cast<int>(room.size())) {
    block = Array<char>::OrNone(std::int64_t{length} + 1);
    std::vsnprintf(block.data(), block.size(), format, arguments_again);
  }
  va_end(arguments_again);
  va_end(arguments);
  const char* const message = length < 0 ? format : block ? block.data() : room.data();
  if (throwing_scopes > 0) throw ThrownError(message);
  current_handler(message);
  std::abort();  // Only a handler that breaks its promise comes here.
}

CatchableErrors::CatchableErrors() { ++throwing_scopes; }
CatchableErrors::~CatchableErrors() { --throwing_scopes; }

FatalHandler SetFatalHandler(FatalHandler handler) {
  const FatalHandler replaced = current_handler;
  current_handler = handler != nullptr ? handler : PrintAndExit;
  return replaced;
}

void EndRun() {
  current_end();
  std::abort();  // As above.
}

EndHandler SetEndHandler(EndHandler handler) {
  const EndHandler replaced = current_end;
  current_end = handler != nullptr ? handler : ExitWithStatusZero;
  return replaced;
}

}  // namespace molva
