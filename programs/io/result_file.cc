// SPDX-License-Identifier: MIT
#include "programs/io/result_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "programs/files/file_identity.h"
#include "programs/files/held_signals.h"
#include "programs/files/own_name.h"
#include "programs/files/same_access.h"

namespace mardle {
namespace {

constexpr mode_t kOwnerOnly = 0600;

// Whether it is the folder that takes no new file. A disk that is full, say, must not cost the old
// one as well.
bool FolderTakesNoFile(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

// Some files cannot be renamed over, those among them that are mounted by themselves.
bool WriteOver(const std::string& name, const std::string& newcomer) {
  const molva::File from = molva::OpenFile(newcomer.c_str(), "r");
  molva::File to = molva::OpenFile(name.c_str(), "w");
  if (!from || !to) {
    molva::ReportFailedWrite(name.c_str(), errno);
    return false;
  }
  std::array<char, 65536> block;
  while (const std::size_t size = std::fread(block.data(), 1, block.size(), from.get())) {
    if (std::fwrite(block.data(), 1, size, to.get()) != size) break;
  }
  const bool is_cut = std::ferror(from.get()) != 0;
  if (!molva::CloseFile(to)) return false;
  if (is_cut) molva::ReportFailedWrite(name.c_str(), EIO);
  return !is_cut;
}

}  // namespace

ResultFile::ResultFile(const std::string& name) : file_{nullptr, name} {
  struct stat file;
  const bool is_there = lstat(name.c_str(), &file) == 0;
  const bool is_new = !is_there && errno == ENOENT && !name.empty() && name.back() != '/';
  if (is_new) {
    OpenNew();
  } else if (is_there && S_ISREG(file.st_mode) && !IsStandardStream(name)) {
    OpenToReplace();
  } else {
    OpenInPlace();
  }
}

void ResultFile::OpenInPlace() { file_ = molva::OpenFile(file_.path.c_str(), "w"); }

void ResultFile::OpenNew() {
  const int newcomer = partial_.Create(FolderOf(file_.path), std::nullopt);
  if (newcomer >= 0) return OpenBeside(newcomer);
  if (FolderTakesNoFile(errno)) OpenInPlace();
}

// The old file is opened as if it were written, so that whatever speaks against it is met now.
void ResultFile::OpenToReplace() {
  const int old = open(file_.path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
  if (old < 0) return;
  const int newcomer = partial_.Create(FolderOf(file_.path), kOwnerOnly);
  const bool in_place = newcomer < 0 ? FolderTakesNoFile(errno) : !GiveSameAccess(old, newcomer);
  close(old);
  if (!in_place) return OpenBeside(newcomer);
  if (newcomer >= 0) close(newcomer);
  partial_.Remove();
  OpenInPlace();
}

void ResultFile::OpenBeside(int newcomer) {
  if (newcomer >= 0) file_.stream.reset(fdopen(newcomer, "w"));
}

bool ResultFile::Complete() {
  const bool is_written = molva::CloseFile(file_);
  if (!is_written) partial_.Remove();
  if (!is_written || partial_.name().empty()) return is_written;
  const HeldSignals held;
  if (std::rename(partial_.name().c_str(), file_.path.c_str()) == 0) {
    partial_.Forget();
    return true;
  }
  const bool is_over = WriteOver(file_.path, partial_.name());
  partial_.Remove();
  return is_over;
}

}  // namespace mardle
