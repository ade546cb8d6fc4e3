// SPDX-License-Identifier: MIT
#include "lib/support/strings.h"

#include <cstring>
#include <utility>

namespace molva {

String mystrdup(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  String copy(static_cast<std::int64_t>(size), "mystrdup: str");
  std::memcpy(copy.data(), text, size);
  return copy;
}

char* StripTrailing(char* text, const char* set) {
  std::size_t length = std::strlen(text);
  while (length > 0 && std::strchr(set, text[length - 1]) != nullptr) --length;
  text[length] = '\0';
  return text;
}

Strings::Strings(std::int64_t n, BlockName name) : table_(Array<char*>::Zeroed(n, name)) {}

Strings& Strings::operator=(Strings&& other) noexcept {
  std::swap(table_, other.table_);
  return *this;
}

Strings::~Strings() {
  for (char* text : table_) {
    if (text != nullptr) RVfree(text);
  }
}

void Strings::Set(std::size_t i, const char* text) { table_[i] = mystrdup(text).Release(); }

}  // namespace molva
