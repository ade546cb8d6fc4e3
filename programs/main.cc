// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <new>

#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "programs/run.h"

int main(int argc, char** argv) {
  // Every way out flushes standard output and tells when that fails.
  std::atexit(molva::FlushStandardOutput);
  // Strings and tables of the standard library carry no name of their own.
  std::set_new_handler([] { molva::FatalError("***Memory allocation failed for mardle."); });
  return mardle::Run(argc, argv);
}
