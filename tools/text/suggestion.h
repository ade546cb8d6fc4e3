// SPDX-License-Identifier: MIT
//
// What somebody may have meant who typed a name that there is not.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace mardle::tools {

// The name that the fewest single-letter changes (a letter put in, left out, changed, or swapped
// with the next) lead to, when those are few for its length; the first among equals. Capitals count
// as the small letters of ASCII.
std::optional<std::string> Closest(std::string_view typed, std::span<const std::string> names);

// "; did you mean 'NAME'?", or nothing.
std::string DidYouMean(std::string_view typed, std::span<const std::string> names);

}  // namespace mardle::tools
