// SPDX-License-Identifier: MIT
#include "tools/text/tool_frame.h"

#include <csignal>
#include <cstdio>

#include "lib/support/files.h"
#include "tools/text/file_error.h"
#include "tools/text/partial_files.h"

namespace mardle::tools {

void PrepareTool() {
  molva::OccupyStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  RemovePartialFilesWhenInterrupted();
}

void ReportError(const char* tool, std::string message) {
  while (message.ends_with('\n')) message.pop_back();
  std::fprintf(stderr, "%s: %s\n", tool, message.c_str());
}

void WriteStandardOutput(const std::string& text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) throw SystemError("standard output");
}

}  // namespace mardle::tools
