// SPDX-License-Identifier: MIT
//
// The command line of mardle-import.
#pragma once

#include <optional>

#include "tools/import/import_options.h"

namespace CLI {
class App;
}

namespace mardle::tools {

// Fills in the options. When there is nothing to import it returns the status to end with: 0 after
// --help and --version, 2 after a command line that is wrong, which is reported on standard error.
std::optional<int> ParseImportOptions(int argc, const char* const* argv, ImportOptions& options);

// The options themselves, without the arguments and what the program does with its output.
void AddImportOptions(CLI::App& app, ImportOptions& options);

}  // namespace mardle::tools
