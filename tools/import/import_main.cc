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
#include "tools/text/tool_frame.h"

namespace {

using namespace mardle::tools;

constexpr char kName[] = "mardle-import";

void RunImport(const ImportOptions& options) {
  const ImportResult result = Import(options);
  if (!options.quiet) std::fputs(Summary(options, result).c_str(), stdout);
}

}  // namespace

int main(int argc, char** argv) {
  PrepareTool();
  ImportOptions options;
  if (const std::optional<int> status = ParseImportOptions(argc, argv, options)) return *status;
  try {
    RunImport(options);
    return kSuccess;
  } catch (const std::bad_alloc&) {
    ReportError(kName, "out of memory");
  } catch (const std::invalid_argument& error) {
    ReportError(kName, error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    ReportError(kName, error.what());
  }
  return kFailure;
}
