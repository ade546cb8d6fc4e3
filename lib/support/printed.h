// SPDX-License-Identifier: MIT
//
// Floating numbers on their way to printf, not-a-number with a sign of its own. The sign that
// arithmetic leaves says nothing: of two not-a-numbers it keeps that of the operand that the
// compiler happened to put first. Every floating result that is printed passes here, so no sign
// that was computed is ever seen, and the kernels need not care.
//
//   nan   the data brought one: the matrix holds it, or LOG meets a negative value
//   -nan  numbers have made it: zero by zero, infinity less infinity
#pragma once

#include "lib/support/wide.h"

namespace molva {

// Whether the data of this run bring a not-a-number; they do not until it is said.
void DataBringNotANumber(bool bring);

// What may stem from any of the data.
double Printed(Wide value);

// What stems from `origin` and counts alone: where that is a number, numbers have made it. Counts
// by themselves stem from 0.
double Printed(Wide value, Wide origin);

}  // namespace molva
