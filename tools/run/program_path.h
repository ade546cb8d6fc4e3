// SPDX-License-Identifier: MIT
//
// Where the program to run is.
#pragma once

#include <optional>
#include <string>

namespace mardle::tools {

// The file of the running program.
std::string OwnPath();

// The program that `name` means to a shell: a path when there is a slash in it, or else the first
// executable file of that name in the folders of `path`.
std::optional<std::string> FindProgram(const std::string& name, const char* path);

// mardle: what the variable MARDLE names, or else the one beside this program, or else the one on
// PATH.
std::optional<std::string> FindMardle();

// A program of this name beside this one, or else on PATH.
std::optional<std::string> FindBeside(const std::string& name);

}  // namespace mardle::tools
