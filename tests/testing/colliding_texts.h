// SPDX-License-Identifier: MIT
//
// Different texts of 16 characters with one hash value, as somebody would choose them who wants a
// hash table to be slow.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace testing_support {

// Without null characters, line ends and blanks.
std::vector<std::string> CollidingTexts(std::size_t n);

}  // namespace testing_support
