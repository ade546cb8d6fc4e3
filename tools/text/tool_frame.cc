// SPDX-License-Identifier: MIT
#include "tools/text/tool_frame.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>

#include "lib/support/files.h"
#include "programs/files/partial_files.h"
#include "tools/text/file_error.h"
#include "tools/text/terminal_text.h"

namespace mardle::tools {

void PrepareTool() {
  molva::OccupyStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  RemovePartialFilesWhenInterrupted();
}

void ReportError(const char* tool, std::string message) {
  while (message.ends_with('\n')) message.pop_back();
  std::fprintf(stderr, "%s: %s\n", tool, ShownOn(STDERR_FILENO, message).c_str());
}

int StatusOf(const char* tool, const std::function<int()>& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    ReportError(tool, "out of memory");
  } catch (const std::invalid_argument& error) {
    ReportError(tool, error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    ReportError(tool, error.what());
  }
  return kFailure;
}

void WriteStandardOutput(const std::string& text) {
  const std::string shown = ShownOn(STDOUT_FILENO, text);
  const bool written = std::fwrite(shown.data(), 1, shown.size(), stdout) == shown.size();
  if (!written || std::fflush(stdout) != 0) throw SystemError("standard output");
}

}  // namespace mardle::tools
