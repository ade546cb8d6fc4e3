// SPDX-License-Identifier: MIT
#include "tools/text/input_lines.h"

#include <cstdio>
#include <memory>
#include <utility>

namespace mardle::tools {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

std::string_view WithoutCarriageReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::size_t ReadBlock(std::FILE* stream, const std::string& name, char* block, std::size_t size) {
  const std::size_t count = std::fread(block, 1, size, stream);
  if (count == 0 && std::ferror(stream) != 0) throw SystemError(name);
  return count;
}

// A function is copied, and an open file is not.
ByteSource FileSource(const std::string& path) {
  if (path == "-") {
    return [](char* block, std::size_t size) {
      return ReadBlock(stdin, "standard input", block, size);
    };
  }
  const auto file = std::make_shared<molva::File>(OpenForReading(path));
  return [file, path](char* block, std::size_t size) {
    return ReadBlock(file->get(), path, block, size);
  };
}

}  // namespace

molva::File OpenForReading(const std::string& path) {
  molva::File file = molva::OpenFile(path.c_str(), "r");
  if (!file) throw SystemError(path);
  return file;
}

InputLines::InputLines(const std::string& path)
    : InputLines(path == "-" ? "standard input" : path, FileSource(path)) {}

InputLines::InputLines(const std::string& name, ByteSource source)
    : source_(std::move(source)), place_{name, 0} {}

std::string_view InputLines::Beginning() {
  if (!started_) {
    started_ = true;
    while (buffer_.size() < kBlock && ReadMore()) continue;
    if (buffer_.starts_with(kByteOrderMark)) taken_ = kByteOrderMark.size();
  }
  return std::string_view(buffer_).substr(taken_);
}

bool InputLines::Next(std::string_view& line) {
  Beginning();
  std::size_t searched = taken_;
  std::size_t end = 0;
  while ((end = buffer_.find('\n', searched)) == std::string::npos) {
    buffer_.erase(0, taken_);
    taken_ = 0;
    searched = buffer_.size();
    if (!ReadMore()) break;
  }
  if (end == std::string::npos && taken_ == buffer_.size()) return false;
  line = std::string_view(buffer_).substr(taken_, end == std::string::npos ? end : end - taken_);
  taken_ = end == std::string::npos ? buffer_.size() : end + 1;
  line = WithoutCarriageReturn(line);
  ++place_.line;
  return true;
}

void InputLines::Fail(const std::string& message) const { throw FileError(place_, message); }

bool InputLines::ReadMore() {
  const std::size_t old_size = buffer_.size();
  buffer_.resize(old_size + kBlock);
  const std::size_t count = source_(buffer_.data() + old_size, kBlock);
  buffer_.resize(old_size + count);
  return count > 0;
}

}  // namespace mardle::tools
