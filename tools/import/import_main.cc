// SPDX-License-Identifier: MIT
//
// mardle-import: makes matrices of other formats and of texts.
#include <optional>

#include "tools/import/command_line.h"
#include "tools/import/import.h"
#include "tools/text/tool_frame.h"

namespace {

using namespace mardle::tools;

int Work(int argc, const char* const* argv) {
  ImportOptions options;
  if (const std::optional<int> status = ParseImportOptions(argc, argv, options)) return *status;
  const ImportResult result = Import(options);
  if (!options.quiet) WriteStandardOutput(Summary(options, result));
  return kSuccess;
}

}  // namespace

int main(int argc, char** argv) {
  PrepareTool();
  return StatusOf("mardle-import", [&] { return Work(argc, argv); });
}
