// SPDX-License-Identifier: MIT
//
// A text to import, whatever it comes in: unpacked, in UTF-8, and looked at on its way.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tools/import/decoder.h"
#include "tools/import/text_watch.h"
#include "tools/import/unpacked_file.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {

class TextInput {
 public:
  // "-" is standard input; without an encoding the text is in UTF-8. Throws FileError when the file
  // cannot be opened.
  TextInput(const std::string& path, const std::string& encoding);
  TextInput(const TextInput&) = delete;
  TextInput& operator=(const TextInput&) = delete;

  // Taking lines throws NoText when the input is no text, as far as its bytes tell.
  InputLines& lines() { return lines_; }
  const TextWatch& watch() const { return watch_; }

 private:
  std::size_t ReadUnpacked(char* block, std::size_t size);
  std::size_t Read(char* block, std::size_t size);

  UnpackedFile file_;
  bool begun_ = false;
  std::optional<Decoder> decoder_;
  TextWatch watch_;
  InputLines lines_;
};

}  // namespace mardle::tools
