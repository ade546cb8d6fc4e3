// SPDX-License-Identifier: MIT
//
// What a sweep finds: a row for every number of clusters, as text and as CSV.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace mardle::tools {

// How well the clusters agree with the classes.
struct ClassAgreement {
  double purity = 0;
  double nmi = 0;
};

struct SweepRow {
  int nclusters = 0;
  double value = 0;  // of the criterion, the best of all seeds
  double added = 0;  // by each further cluster, from the number before; not-a-number without one
  double stability =
      0;  // adjusted Rand index of the clusterings of two seeds: the mean of all pairs
  double least_stability = 0;
  int smallest = 0;  // sizes of the clusters of the best seed
  double median = 0;
  int largest = 0;
  std::optional<ClassAgreement> classes;
};

// A line for each row under a line of names, numbers in as many digits as people read.
std::string TableText(const std::vector<SweepRow>& rows);

// The same with all digits.
std::string CsvText(const std::vector<SweepRow>& rows);

}  // namespace mardle::tools
