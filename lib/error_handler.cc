// SPDX-License-Identifier: MIT
//
// What a host program makes of errors: a handler of its own, or a call that comes back.
#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "lib/molva.h"
#include "lib/support/fatal.h"

namespace molva {
namespace {

// Leaves as much of the text as there is room for, always ended by a NUL.
void CopyMessage(std::string_view text, char* message, std::size_t size) {
  if (message == nullptr || size == 0) return;
  const std::size_t length = std::min(text.size(), size - 1);
  std::memcpy(message, text.data(), length);
  message[length] = '\0';
}

}  // namespace
}  // namespace molva

MOLVA_ErrorHandler MOLVA_SetErrorHandler(MOLVA_ErrorHandler handler) {
  return molva::SetFatalHandler(handler);
}

int MOLVA_Try(void (*function)(void*), void* argument, char* message, size_t size) {
  const molva::CatchableErrors throws;
  try {
    function(argument);
  } catch (const molva::ThrownError& error) {
    molva::CopyMessage(error.what(), message, size);
    return 1;
  } catch (const std::bad_alloc&) {
    molva::CopyMessage("Out of memory!", message, size);
    return 1;
  }
  molva::CopyMessage("", message, size);
  return 0;
}
