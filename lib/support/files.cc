// SPDX-License-Identifier: MIT
#include "lib/support/files.h"

#include <cerrno>
#include <cstring>

#include "lib/support/fatal.h"

namespace molva {
namespace {

void ReportFailedWrite(const char* path, int error) {
  std::fprintf(stderr, "Writing %s failed: %s\n", path, std::strerror(error));
  std::fflush(stderr);
}

}  // namespace

File OpenFile(const char* path, const char* mode) {
  return File{std::unique_ptr<std::FILE, CloseStream>(std::fopen(path, mode)), path};
}

File RVfopen(const char* path, const char* mode, const char* name) {
  File file = OpenFile(path, mode);
  if (!file) {
    std::perror(name);
    FatalError("Failed on RVfopen\n");
  }
  return file;
}

void CloseFile(File& file) {
  if (!file) return;
  // A write that failed earlier keeps the error flag but not its reason; closing usually meets the
  // same reason again, and errno still holds the earlier one when it does not.
  const bool failed_before = std::ferror(file.get()) != 0;
  const bool failed_now = std::fclose(file.stream.release()) != 0;
  if (failed_before || failed_now) ReportFailedWrite(file.path.c_str(), errno);
}

void FlushStandardOutput() {
  const bool failed_now = std::fflush(stdout) != 0;
  if (failed_now || std::ferror(stdout) != 0) ReportFailedWrite("standard output", errno);
}

int FileExists(const char* path) { return OpenFile(path, "r") ? 1 : 0; }

}  // namespace molva
