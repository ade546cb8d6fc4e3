// SPDX-License-Identifier: MIT
//
// The colours of cells.
#pragma once

#include <optional>
#include <span>

#include "programs/plot_page.h"

namespace mardle {

// The largest value above 0 and the smallest below 0; 0 where there is none. Values that are not
// numbers are skipped.
struct ValueRange {
  float maxpos = 0;
  float minneg = 0;
  void Include(std::span<const float> values);
};

// The colour of a stored value. On white, positive values fade from red (the largest) to white and
// negative ones from green, and values of at most 0.00001 in size are not drawn; on black they fade
// to black, and all are drawn. Values that are not numbers are never drawn.
std::optional<Color> CellColor(float value, const ValueRange& range, bool zeroblack);

}  // namespace mardle
