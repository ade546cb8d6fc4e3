// SPDX-License-Identifier: MIT
//
// Numbers and counts as people write them.
#pragma once

#include <cstdint>
#include <string>

namespace mardle::exporting {

// A number with so many decimals; "n/a" when it is none.
std::string Decimals(double value, int decimals);
// A number in as few digits as tell it: "0.05".
std::string Shortest(double value);
// Four digits, with commas where they are whole: 1,500, 0.02345.
std::string FourDigits(double value);
// Three digits: 0.123, 12.3, 1.23e+06.
std::string ThreeDigits(double value);
// A count with commas: 46,873.
std::string Grouped(std::int64_t count);
// A share of 1 as the percentage that SVG and CSS take: "37.50%".
std::string Percent(double share);
// A share of 1 as people write it, "37.5 %", with a blank at which no line ends.
std::string PercentText(double share);
// "1 document", "7,674 documents".
std::string Counted(std::int64_t count, const std::string& one, const std::string& many);
// With a capital at its beginning.
std::string Capital(std::string word);

}  // namespace mardle::exporting
