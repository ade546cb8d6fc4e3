// SPDX-License-Identifier: MIT
#include "tools/text/output_file.h"

#include <array>
#include <cstdio>
#include <set>
#include <vector>

#include "programs/files/held_signals.h"
#include "programs/files/own_name.h"
#include "tools/text/file_error.h"
#include "tools/text/file_exchange.h"
#include "tools/text/folder_lock.h"

namespace mardle::tools {
namespace {

void RefuseSharedNames(std::span<OutputFile* const> files) {
  std::set<std::string> paths;
  for (const OutputFile* file : files) {
    if (!file->target().written_through && !paths.insert(file->target().path).second) {
      throw FileError({file->name(), 0}, "is the name of two outputs");
    }
  }
}

std::vector<std::string> FoldersOf(std::span<OutputFile* const> files) {
  std::vector<std::string> folders;
  for (const OutputFile* file : files) {
    if (!file->target().written_through) folders.push_back(FolderOf(file->target().path));
  }
  return folders;
}

}  // namespace

OutputFile::OutputFile(const std::string& name) : name_(name), target_(TargetOf(name)) {
  if (target_.written_through) {
    file_.stream.reset(std::tmpfile());
  } else {
    const int descriptor = partial_.Create(FolderOf(target_.path), target_.mode);
    if (descriptor >= 0) file_.stream.reset(fdopen(descriptor, "w+"));
  }
  if (!file_) throw SystemError(name_);
}

OutputFile::~OutputFile() = default;

void OutputFile::Write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) {
    throw SystemError(name_);
  }
}

void OutputFile::WriteFirst(std::string_view text) {
  if (std::fseek(file_.get(), 0, SEEK_SET) != 0) throw SystemError(name_);
  Write(text);
}

void OutputFile::Complete() {
  if (std::fflush(file_.get()) != 0) throw SystemError(name_);
  // The held text is read back; a file is whole only when closing it, too, went well.
  if (target_.written_through) return;
  if (std::fclose(file_.stream.release()) != 0) throw SystemError(name_);
}

void OutputFile::WriteThrough() {
  molva::File target = molva::OpenFile(name_.c_str(), "w");
  if (!target) throw SystemError(name_);
  std::rewind(file_.get());
  std::array<char, 65536> block;
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), file_.get())) {
    if (std::fwrite(block.data(), 1, size, target.get()) != size) throw SystemError(name_);
  }
  if (std::ferror(file_.get()) != 0) throw SystemError(name_);
  if (std::fclose(target.stream.release()) != 0) throw SystemError(name_);
}

void Publish(std::span<OutputFile* const> files, std::span<const std::string> leftovers,
             const std::function<void()>& check) {
  RefuseSharedNames(files);
  // A pipe may keep this process waiting, and others must not wait with it.
  for (OutputFile* file : files) {
    if (file->target_.written_through) file->WriteThrough();
  }
  const FolderLock lock(FoldersOf(files));
  check();
  const HeldSignals held;
  FileExchange exchange;
  for (const std::string& leftover : leftovers) exchange.Remove(leftover);
  for (OutputFile* file : files) {
    if (file->target_.written_through) continue;
    exchange.Replace(file->target_.path, file->partial_.name());
  }
  exchange.Keep();
  for (OutputFile* file : files) file->partial_.Forget();
}

}  // namespace mardle::tools
