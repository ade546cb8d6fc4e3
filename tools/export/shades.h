// SPDX-License-Identifier: MIT
//
// The steps of the colours in which heat maps show levels, and the key to them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "tools/export/wording.h"

namespace mardle::exporting {

// From -6 to 6: 0 leaves a cell white, the larger the darker. A share of rows has 0 to 6.
int ShadeOfShare(double share);
// A standing has even ones, below 0 where it is below the average.
int ShadeOfStanding(double standing);

// The name of a shade in style sheets: "h3", "g4" for -4.
std::string ShadeName(int shade);

struct KeyEntry {
  int shade;
  const char* text;
};
// What the shades of shares, or else of standings mean, from left to right.
std::span<const KeyEntry> KeyOfShades(bool are_shares);
std::string KeyTitle(bool are_shares, const Wording& wording);

}  // namespace mardle::exporting
