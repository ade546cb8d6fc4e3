// SPDX-License-Identifier: MIT
//
// Slow and obvious computations that the tests compare the library with. They work on dense wide
// vectors and start from scratch each time.
#pragma once

#include <span>
#include <vector>

#include "lib/matrix/prepared_matrix.h"
#include "lib/support/wide.h"

namespace testing_support {

using molva::Wide;
using WideVector = std::vector<Wide>;

WideVector DenseRow(const molva::PreparedMatrix& mat, int i);
Wide Dot(const WideVector& a, const WideVector& b);

// The sum of the rows of cluster k; of all rows for k = -1.
WideVector CompositeOf(const molva::PreparedMatrix& mat, std::span<const int> part, int k);

// The criterion of a clustering by its formula, codes 1 to 9.
Wide CriterionValue(int code, const molva::PreparedMatrix& mat, std::span<const int> part,
                    int nparts);

// The form of a criterion value that is better when larger, per row where the refinement tells it
// per row.
Wide QualityOf(int code, Wide value, int nrows);

// Starts the library's random sequence and the platform's, from which the oracles draw.
void SeedBoth(int seed);

// Seeding written out literally: every gain in wide arithmetic, single precision where it is
// stored. Uses the same random draws as the library.
void PlainSeeding(const molva::PreparedMatrix& mat, int nparts, std::span<int> part);

// Refinement written out literally, one candidate at a time, every value recomputed for it. Uses
// the same random draws as the library; returns the quality and rewrites `part`.
float PlainRefinement(int code, const molva::PreparedMatrix& mat, int nparts, int niter,
                      std::span<int> part);

}  // namespace testing_support
