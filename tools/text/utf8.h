// SPDX-License-Identifier: MIT
//
// Characters of UTF-8, found through ICU. Overlong forms, surrogates and what lies above U+10FFFF
// are none.
#pragma once

#include <cstddef>
#include <string_view>

namespace mardle::tools {

// The bytes of the well-formed character at the front of a text that is not empty; 0 when none
// stands there.
std::size_t CharacterLength(std::string_view text);

// As much of the text as fits into so many bytes, ending behind a character.
std::string_view CutToBytes(std::string_view text, std::size_t most);

}  // namespace mardle::tools
