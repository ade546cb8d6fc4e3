// SPDX-License-Identifier: MIT
//
// The merging engine: n items into one binary tree, always the merge that is best for the
// criterion. It works on an n x n matrix of dot products between the items' composites alone.
#pragma once

#include "lib/matrix/control.h"
#include "lib/support/span.h"
#include "lib/tree/merging.h"

namespace molva {

// Builds the tree under criterion 1 to 7; any other code is fatal:
// "Unknown clustering criterion function (CRFun) of %d\n".
void BuildSimHAC(const Control& control, const Merging& merging);

// The engine for criteria 1 to 5, whose change depends on the two merged items alone: a queue of
// all pairs.
void BuildSimHAC_LocalGains(const Control& control, const Merging& merging);

// The engine for the ratios 6 and 7: every pair is tried at every step. Its name is the one its
// blocks carry.
void BuildSimHAC_I1I2E1G1G1P(const Control& control, const Merging& merging);

// Cuts the tree into nparts clusters by undoing the last merges; part holds n elements.
void InduceClusteringFromHAC(int n, int nparts, Span<const int> ptree, Span<int> part);

// Merges and cuts, the worker under MOLVA_SA_Cluster. Sets ptree to -1 first.
void MergeItems(const Control& control, const Merging& merging, int nparts, Span<int> part);

// Ends the run when there are more items than the engine can number. Callers ask before they
// allocate an n x n matrix.
void CheckItemCount(int n);

}  // namespace molva
