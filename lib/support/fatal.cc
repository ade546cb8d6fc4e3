// SPDX-License-Identifier: MIT
//
// Every error exit of the library and the program passes through FatalError, every other early end
// through EndRun.
#include "lib/support/fatal.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

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

// Messages quote file names and values of any length, so the text is sized before it is made.
std::string FormatMessage(const char* format, std::va_list arguments) {
  std::va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) return format;
  std::string message(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(message.data(), message.size() + 1, format, arguments);
  return message;
}

}  // namespace

void FatalError(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string message = FormatMessage(format, arguments);
  va_end(arguments);
  if (throwing_scopes > 0) throw ThrownError(message);
  current_handler(message.c_str());
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
