// SPDX-License-Identifier: MIT
#include "tools/import/text_input.h"

#include <string_view>
#include <utility>

#include "tools/import/file_kind.h"

namespace mardle::tools {

TextInput::TextInput(const std::string& path, const std::string& encoding)
    : file_(path),
      watch_(file_.name()),
      lines_(file_.name(), [this](char* block, std::size_t size) { return Read(block, size); }) {
  if (encoding.empty()) return;
  decoder_.emplace(encoding, file_.name(),
                   [this](char* block, std::size_t size) { return ReadUnpacked(block, size); });
}

std::size_t TextInput::ReadUnpacked(char* block, std::size_t size) {
  const std::size_t count = file_.Read(block, size);
  if (std::exchange(begun_, true)) return count;
  const std::string_view kind = KindOfNoText({block, count}, decoder_.has_value());
  if (!kind.empty()) throw NoText({file_.name(), 0}, "is " + std::string(kind));
  return count;
}

std::size_t TextInput::Read(char* block, std::size_t size) {
  const std::size_t count = decoder_ ? decoder_->Read(block, size) : ReadUnpacked(block, size);
  count > 0 ? watch_.Look({block, count}) : watch_.End();
  return count;
}

}  // namespace mardle::tools
