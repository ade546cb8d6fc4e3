// SPDX-License-Identifier: MIT
#include "tools/text/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tools/text/input_error.h"

namespace mardle::tools {

OutputFile::OutputFile(const std::string& name)
    : name_(name),
      partial_(name + ".partial"),
      until_kept_(partial_.c_str()),
      file_(molva::OpenFile(partial_.c_str(), "w")) {
  if (!file_) Fail();
}

OutputFile::~OutputFile() {
  if (!kept_) std::remove(partial_.c_str());
}

void OutputFile::Write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) Fail();
}

void OutputFile::WriteFirst(std::string_view text) {
  if (std::fseek(file_.get(), 0, SEEK_SET) != 0) Fail();
  Write(text);
}

void OutputFile::Close() {
  if (std::fclose(file_.stream.release()) != 0) Fail();
}

void OutputFile::Keep() {
  if (std::rename(partial_.c_str(), name_.c_str()) != 0) Fail();
  kept_ = true;
}

void OutputFile::Fail() const { throw InputError({name_, 0}, std::strerror(errno)); }

}  // namespace mardle::tools
