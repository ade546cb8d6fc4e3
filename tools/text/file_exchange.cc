// SPDX-License-Identifier: MIT
#include "tools/text/file_exchange.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "programs/files/own_name.h"
#include "tools/text/file_error.h"
#include "tools/text/output_target.h"

namespace mardle::tools {
namespace {

bool IsAbsent(const std::string& name) {
  struct stat file;
  return lstat(name.c_str(), &file) != 0 && errno == ENOENT;
}

bool IsFolder(const std::string& name) {
  struct stat file;
  return lstat(name.c_str(), &file) == 0 && S_ISDIR(file.st_mode);
}

// Moves the file; returns its new name.
std::string MoveAside(const std::string& name) {
  if (IsFolder(name)) throw FileError({name, 0}, "is a folder");
  const std::string aside = OwnName(FolderOf(name));
  if (std::rename(name.c_str(), aside.c_str()) != 0) throw SystemError(name);
  return aside;
}

// Gives the file a second name, so that it never goes without the first; moves it where that cannot
// be done. Returns the other name.
std::string KeepAside(const std::string& name) {
  const std::string aside = OwnName(FolderOf(name));
  return link(name.c_str(), aside.c_str()) == 0 ? aside : MoveAside(name);
}

}  // namespace

FileExchange::~FileExchange() {
  for (auto step = steps_.rbegin(); step != steps_.rend(); ++step) Undo(*step);
}

void FileExchange::Replace(const std::string& name, const std::string& newcomer) {
  Step& step = steps_.emplace_back();
  step.name = name;
  if (!IsAbsent(name)) step.aside = KeepAside(name);
  if (std::rename(newcomer.c_str(), name.c_str()) != 0) throw SystemError(name);
  step.done = true;
}

void FileExchange::Remove(const std::string& name) {
  if (IsAbsent(name)) return;
  Step& step = steps_.emplace_back();
  step.name = name;
  step.aside = MoveAside(name);
}

void FileExchange::Keep() {
  for (const Step& step : steps_) {
    if (!step.aside.empty()) unlink(step.aside.c_str());
  }
  steps_.clear();
}

void FileExchange::Undo(const Step& step) {
  if (step.aside.empty()) {
    if (step.done) unlink(step.name.c_str());
    return;
  }
  std::rename(step.aside.c_str(), step.name.c_str());
  // Where both names still were of one file, renaming has left both.
  unlink(step.aside.c_str());
}

}  // namespace mardle::tools
