// SPDX-License-Identifier: MIT
#include <csignal>
#include <cstdlib>

#include "lib/support/files.h"
#include "programs/files/partial_files.h"
#include "programs/run.h"

int main(int argc, char** argv) {
  molva::OccupyStandardStreams();
  // A reader that is gone and a limit on file sizes are failed writes like any other: the run goes
  // on, and the files that it still has to write are written.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // Every way out flushes standard output and reports when that fails.
  std::atexit(molva::FlushStandardOutput);
  // None leaves a result behind that is not whole.
  std::atexit(mardle::RemovePartialFiles);
  mardle::RemovePartialFilesWhenInterrupted();
  return mardle::Run(argc, argv);
}
