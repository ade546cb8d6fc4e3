// SPDX-License-Identifier: MIT
//
// The command line.
#pragma once

#include <span>

#include "programs/run_params.h"

namespace mardle {

// One option: how its value is read and which field it sets.
struct Option {
  enum class Value { kNone, kInt, kFloat, kText, kOptionalInt, kOptionalText, kFormat, kHelp };

  const char* name;
  Value value;
  // The fields it sets; the others are null.
  bool RunParams::*flag = nullptr;           // set: kNone, kOptionalInt, kOptionalText
  int RunParams::*number = nullptr;          // kInt, kOptionalInt
  float RunParams::*fraction = nullptr;      // kFloat
  molva::String RunParams::*text = nullptr;  // kText, kOptionalText
};

// The 32 options, in the order in which the parser lists them.
std::span<const Option> OptionTable();

// What a command line asks for.
enum class CommandLineKind { kRun, kHelp, kRefused };

// Tells it as ParseCommandLine would find out, but prints nothing and ends nothing; the arguments
// are reordered as by the parser.
CommandLineKind KindOfCommandLine(int argc, char** argv);

// Fills params: defaults, then the options in the order given, then the two positional arguments,
// then what follows from them. Numbers are not range-checked. Help, an illegal option and a wrong
// number of positional arguments print to standard output and end the process with status 0.
void ParseCommandLine(RunParams& params, int argc, char** argv);

}  // namespace mardle
