// SPDX-License-Identifier: MIT
//
// mardle-import: makes matrices of other formats and of texts.
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>

#include "tools/import/command_line.h"
#include "tools/import/import.h"
#include "tools/text/partial_files.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;

void Tell(const char* message) { std::fprintf(stderr, "mardle-import: %s\n", message); }

void RunImport(const mardle::tools::ImportOptions& options) {
  const mardle::tools::ImportResult result = mardle::tools::Import(options);
  if (!options.quiet) std::fputs(Summary(options, result).c_str(), stdout);
}

}  // namespace

int main(int argc, char** argv) {
  mardle::tools::ImportOptions options;
  if (const std::optional<int> status = ParseImportOptions(argc, argv, options)) return *status;
  mardle::tools::RemovePartialFilesWhenInterrupted();
  try {
    RunImport(options);
    return kSuccess;
  } catch (const std::bad_alloc&) {
    Tell("out of memory");
  } catch (const std::invalid_argument& error) {
    Tell(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    Tell(error.what());
  }
  return kFailure;
}
