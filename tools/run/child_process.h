// SPDX-License-Identifier: MIT
//
// Another program, run to its end.
#pragma once

#include <string>
#include <vector>

namespace mardle::tools {

// How a program ended.
struct Ending {
  int start_error = 0;            // errno when it could not be started
  int status = 0;                 // its exit status
  int signal = 0;                 // or the signal that ended it
  bool has_failed_write = false;  // it reported one, in the words of mardle
};

// Runs the program with these arguments, its own name not among them, on the streams, in the
// folder and with the environment of this process; what it says on standard error is passed on. The
// signals that ask a program to end or that tell it something (INT, TERM, HUP, QUIT, USR1, USR2)
// are handed on to it meanwhile.
Ending RunProgram(const std::string& program, const std::vector<std::string>& arguments);

// Ends this process by the signal that ended the program, so that whoever started it sees the same.
[[noreturn]] void EndBySignal(int signal);

}  // namespace mardle::tools
