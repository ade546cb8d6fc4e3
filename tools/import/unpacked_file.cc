// SPDX-License-Identifier: MIT
#include "tools/import/unpacked_file.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

#include "tools/text/file_error.h"
#include "tools/text/input_lines.h"

namespace mardle::tools {
namespace {

constexpr unsigned kBlock = 1U << 16;

// A descriptor of its own, which whoever unpacks will close.
int DescriptorOf(const std::string& path) {
  if (path == "-") return dup(STDIN_FILENO);
  const molva::File file = OpenForReading(path);
  return dup(fileno(file.get()));
}

}  // namespace

UnpackedFile::UnpackedFile(const std::string& path) : name_(path == "-" ? "standard input" : path) {
  const int descriptor = DescriptorOf(path);
  if (descriptor < 0) throw SystemError(name_);
  file_.reset(gzdopen(descriptor, "r"));
  if (!file_) {
    close(descriptor);
    throw std::bad_alloc();
  }
  gzbuffer(file_.get(), kBlock);
}

std::size_t UnpackedFile::Read(char* block, std::size_t size) {
  errno = 0;
  const auto most = static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX));
  const int count = gzread(file_.get(), block, most);
  int error = Z_OK;
  gzerror(file_.get(), &error);
  // Where the data end too early, what there is comes first.
  if (count < 0 || (error != Z_OK && error != Z_STREAM_END)) Fail();
  return static_cast<std::size_t>(count);
}

void UnpackedFile::Fail() {
  int error = Z_OK;
  gzerror(file_.get(), &error);
  if (error == Z_ERRNO) throw SystemError(name_);
  if (error == Z_MEM_ERROR) throw std::bad_alloc();
  if (error == Z_BUF_ERROR) throw FileError({name_, 0}, "the compressed data end too early");
  throw FileError({name_, 0}, "the compressed data are damaged");
}

std::string WholeContents(UnpackedFile& file) {
  std::string bytes;
  std::array<char, kBlock> block;
  while (const std::size_t count = file.Read(block.data(), block.size())) {
    bytes.append(block.data(), count);
  }
  return bytes;
}

}  // namespace mardle::tools
