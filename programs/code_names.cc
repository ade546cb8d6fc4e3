// SPDX-License-Identifier: MIT
#include "programs/code_names.h"

#include <array>
#include <span>

#include "lib/molva.h"

namespace mardle {
namespace {

// Codes 8 and 9 cross: reports print H3 for what the help calls G3, and the other way round.
constexpr std::array kCriteria = {"", "I1", "I2", "E1", "G1", "G1'", "H1", "H2", "H3", "G3"};
constexpr std::array kRowModels = {"", "None", "MAXTF", "SQRT", "LOG"};
constexpr std::array kColumnModels = {"", "None", "IDF"};

const char* NameOf(std::span<const char* const> names, int code) {
  const bool known = code > 0 && static_cast<std::size_t>(code) < names.size();
  return names[known ? static_cast<std::size_t>(code) : 0];
}

}  // namespace

const char* CriterionName(int crfun) { return NameOf(kCriteria, crfun); }
const char* RowModelName(int rowmodel) { return NameOf(kRowModels, rowmodel); }
const char* ColumnModelName(int colmodel) { return NameOf(kColumnModels, colmodel); }
const char* SimilarityName(int simfun) {
  return simfun == MOLVA_SIM_COSINE ? "Cosine" : "CorrCoef";
}

}  // namespace mardle
