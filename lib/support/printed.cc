// SPDX-License-Identifier: MIT
#include "lib/support/printed.h"

#include <cmath>
#include <limits>

namespace molva {
namespace {

bool data_bring_not_a_number = false;

double Spelled(Wide value, bool brought) {
  if (!IsNan(value)) return static_cast<double>(value);
  return std::copysign(std::numeric_limits<double>::quiet_NaN(), brought ? 1.0 : -1.0);
}

}  // namespace

void DataBringNotANumber(bool bring) { data_bring_not_a_number = bring; }

double Printed(Wide value) { return Spelled(value, data_bring_not_a_number); }

double Printed(Wide value, Wide origin) {
  return Spelled(value, data_bring_not_a_number && IsNan(origin));
}

}  // namespace molva
