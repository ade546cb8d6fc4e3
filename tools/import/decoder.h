// SPDX-License-Identifier: MIT
//
// Text of any encoding that ICU knows, as UTF-8.
#pragma once

#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tools/text/input_lines.h"

namespace mardle::tools {

class Decoder {
 public:
  // Throws std::invalid_argument when there is no encoding of this name.
  Decoder(const std::string& encoding, std::string name, ByteSource source);

  // Takes the next bytes in UTF-8; 0 at the end. Throws FileError at bytes that the encoding does
  // not have.
  std::size_t Read(char* block, std::size_t size);

 private:
  void DecodeMore();
  void Append(const UChar* text, std::int32_t length);

  std::string encoding_;
  std::string name_;
  ByteSource source_;
  std::unique_ptr<UConverter, void (*)(UConverter*)> converter_;
  std::int64_t line_ = 1;
  std::string decoded_;
  std::size_t taken_ = 0;  // of it
  char16_t half_ = 0;      // a surrogate whose partner has not come
  bool ended_ = false;
};

// The same check of the name alone.
void RequireEncoding(const std::string& encoding);

}  // namespace mardle::tools
