// SPDX-License-Identifier: MIT
//
// The program as a function.
#pragma once

namespace mardle {

// Runs mardle on a command line: reads, clusters, writes and reports, straight through. Returns the
// status of a completed run, which is the length of its closing line, 84. Errors end the process
// with status 0. May be called again.
int Run(int argc, char** argv);

}  // namespace mardle
