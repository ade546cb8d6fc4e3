// SPDX-License-Identifier: MIT
#include "lib/support/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "lib/support/fatal.h"

namespace molva {

void ReportFailedWrite(const char* path, int error) {
  std::fprintf(stderr, "Writing %s failed: %s\n", path, std::strerror(error));
  std::fflush(stderr);
}

// Opening may truncate what was there, so nothing may fail after it.
File OpenFile(const char* path, const char* mode) {
  File file{nullptr, path};
  file.stream.reset(std::fopen(path, mode));
  return file;
}

File RVfopen(const char* path, const char* mode, const char* name) {
  File file = OpenFile(path, mode);
  if (!file) {
    std::perror(name);
    FatalError("Failed on RVfopen\n");
  }
  return file;
}

bool CloseFile(File& file) {
  if (!file) return true;
  // A write that failed earlier keeps the error flag but not its reason; closing usually meets the
  // same reason again, and errno still holds the earlier one when it does not.
  const bool failed_before = std::ferror(file.get()) != 0;
  const bool failed_now = std::fclose(file.stream.release()) != 0;
  if (!failed_before && !failed_now) return true;
  ReportFailedWrite(file.path.c_str(), errno);
  return false;
}

void FlushStandardOutput() {
  const bool failed_now = std::fflush(stdout) != 0;
  if (failed_now || std::ferror(stdout) != 0) ReportFailedWrite("standard output", errno);
}

void OccupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    // The lowest free number is this one. Open the wrong way round, it gives and takes nothing.
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) return;
  }
}

int FileExists(const char* path) { return OpenFile(path, "r") ? 1 : 0; }

}  // namespace molva
