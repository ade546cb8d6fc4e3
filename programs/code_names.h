// SPDX-License-Identifier: MIT
//
// The names that the reports print for the codes of the command line.
#pragma once

namespace mardle {

// Codes outside the tables have the empty name.
const char* CriterionName(int crfun);
const char* RowModelName(int rowmodel);
const char* ColumnModelName(int colmodel);

// "Cosine" for 1, "CorrCoef" for anything else.
const char* SimilarityName(int simfun);

}  // namespace mardle
