// SPDX-License-Identifier: MIT
//
// Merging without a queue, for the usual case that at every step one merge is better than all
// others. A queue of all pairs is needed only to decide between equal gains, which it does by the
// positions of its heap; as long as the best gain is alone, any way to find it finds the same tree.
//
// Every item keeps a bound on the gains with the items before it. The largest bound is made exact
// until it stands, which looks at one row of gains in rough arithmetic and weighs only those in
// full that could be the best. So a merge costs a few walks over the items instead of a queue's
// work for each of them, and no memory beside the matrix.
#pragma once

#include "lib/tree/merging.h"

namespace molva {

// Builds the tree under criterion 1 to 5. Gives up, returning false, when two best gains are equal,
// when a gain is not a finite number, or when smat is not symmetric to the last bit; smat is then
// as it was, and what was written of the tree has to be written again.
bool MergeWhileClear(int crfun, const Merging& merging);

}  // namespace molva
