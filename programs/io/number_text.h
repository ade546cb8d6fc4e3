// SPDX-License-Identifier: MIT
//
// The numbers of a text file. A field is what stands between blanks, tabs and the end of a text; it
// is read where it stands.
#pragma once

namespace mardle {

// What a field says, and where the field ends.
template <typename Number>
struct Parsed {
  Number value;
  const char* end;
};

// The number that a field begins with, exactly as the standard conversions make it of the field
// alone: `strtol` to base 10 and `strtod`. 0 when it begins with none. `field` is the first
// character of a field, neither blank nor tab nor the end of the text.
Parsed<long> ParseLong(const char* field);
Parsed<double> ParseDouble(const char* field);

}  // namespace mardle
