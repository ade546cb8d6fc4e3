// SPDX-License-Identifier: MIT
//
// The command lines of the programs that make matrices: numbers, and the name of a file.
#pragma once

#include <span>
#include <string>
#include <variant>

namespace bench {

struct Argument {
  const char* name;  // "--seed"; without dashes it must be given, by itself
  std::variant<int*, double*, std::string*> field;
  double least;  // of a number
  double most;
  const char* meaning;
};

// Sets the fields that are given. What cannot be understood, and --help, end the run with a message
// and the list of arguments.
void ParseArguments(int argc, char** argv, const char* purpose, std::span<const Argument> known);

// Writes one line a row, a word and the row's number.
void WriteClasses(const std::string& path, const char* word, std::span<const int> numbers);

}  // namespace bench
