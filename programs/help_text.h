// SPDX-License-Identifier: MIT
#pragma once

#include <span>

namespace mardle {

// What -help prints.
std::span<const char* const> HelpLines();

// What follows "Missing parameters.".
std::span<const char* const> UsageLines();

// Prints each line and a newline.
void PrintLines(std::span<const char* const> lines);

}  // namespace mardle
