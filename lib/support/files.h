// SPDX-License-Identifier: MIT
//
// The one place where streams are opened and closed.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace molva {

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

// An open stream and the name it was opened under. Closed silently at scope end; a writer calls
// CloseFile, which reports failed writes.
struct File {
  std::unique_ptr<std::FILE, CloseStream> stream;
  std::string path;
  std::FILE* get() const { return stream.get(); }
  explicit operator bool() const { return stream != nullptr; }
};

// The plain open: an empty handle on failure.
File OpenFile(const char* path, const char* mode);

// The checked open. Failure prints "NAME: " and the system's message to standard error and ends
// the run with "Failed on RVfopen\n".
File RVfopen(const char* path, const char* mode, const char* name);

// Closes the file. Data that could not be written is reported in one line on standard error, and
// the run goes on. Returns whether everything was written.
bool CloseFile(File& file);

// Says on standard error that a file could not be written, and why: a number of errno.
void ReportFailedWrite(const char* path, int error);

// Flushes standard output and reports failed writes as CloseFile does.
void FlushStandardOutput();

// Takes the places of standard streams that are closed, so that no file opened later gets the
// number of one and the text that belongs there. Writing to such a stream still fails.
void OccupyStandardStreams();

// 1 when the file can be opened for reading, else 0. It is opened and closed again, so a pipe that
// can be read once only loses its data here.
int FileExists(const char* path);

}  // namespace molva
