// SPDX-License-Identifier: MIT
//
// Whether a file of results has all its lines.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace mardle::tools {

// What the file should hold: so many lines, each ended, of a whole number and further numbers.
struct WantedLines {
  std::int64_t lines;
  std::size_t fields;
};

// What is wrong with the file, as a sentence that names it; nothing when all is well.
std::optional<std::string> ProblemOfLines(const std::string& name, const WantedLines& wanted);

}  // namespace mardle::tools
