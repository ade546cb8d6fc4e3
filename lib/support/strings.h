// SPDX-License-Identifier: MIT
//
// Owned C strings and trimming.
#pragma once

#include "lib/support/alloc.h"

namespace molva {

// An owned C string; an absent one is null, which is not the same as an empty one.
using String = Array<char>;

// A copy of the text in a block named "mystrdup: str".
String mystrdup(const char* text);

// Removes from the end of the text, in place, every character that belongs to the set, stopping at
// the first that does not. Returns the text.
char* StripTrailing(char* text, const char* set);

// A table of owned strings, all absent at first.
class Strings {
 public:
  Strings() = default;
  Strings(std::int64_t n, BlockName name);
  Strings(Strings&& other) noexcept = default;
  Strings& operator=(Strings&& other) noexcept;
  ~Strings();

  std::size_t size() const { return table_.size(); }
  explicit operator bool() const { return static_cast<bool>(table_); }
  template <typename Index>
  const char* operator[](Index i) const {
    return table_[i];
  }
  // Stores a copy of the text in slot i, which must be absent.
  void Set(std::size_t i, const char* text);

 private:
  Array<char*> table_;
};

}  // namespace molva
