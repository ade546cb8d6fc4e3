// SPDX-License-Identifier: MIT
//
// A sweep as a picture: the criterion over the numbers of clusters, and below it how stable they
// are and how well they agree with the classes.
#pragma once

#include <string>
#include <vector>

#include "tools/sweep/sweep.h"

namespace mardle::tools {

// Round numbers from the first at or above `low` to the last at or below `high`, some five of them.
std::vector<double> RoundTicks(double low, double high);

// An SVG file. Values that are no finite numbers have no marks.
std::string CurvePicture(const Sweep& sweep);

}  // namespace mardle::tools
