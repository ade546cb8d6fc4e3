// SPDX-License-Identifier: MIT
//
// mardle-export as a function of its command line.
#pragma once

namespace mardle::exporting {

// Returns the exit status: 0 when the export was written, 1 when it failed, with the reason on
// standard error, 2 when the command line was wrong.
int Export(int argc, const char* const* argv);

}  // namespace mardle::exporting
