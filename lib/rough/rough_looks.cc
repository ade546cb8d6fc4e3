// SPDX-License-Identifier: MIT
#include "lib/rough/rough_looks.h"

namespace molva {
namespace {

bool& Used() {
  static bool used = true;
  return used;
}

}  // namespace

bool RoughLooksAreUsed() { return Used(); }

void UseRoughLooks(bool used) { Used() = used; }

}  // namespace molva
