// SPDX-License-Identifier: MIT
//
// MeasureQuality computes every number of the report; the Print routines lay them out. What is
// counted from classes stems from no value of the matrix, which the 0 behind it tells Printed.
#include "programs/quality_report.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "lib/support/alloc.h"
#include "lib/support/printed.h"
#include "programs/code_names.h"
#include "programs/external_quality.h"

namespace mardle {
namespace {

using molva::AllocFloatsSet;
using molva::AllocIntsSet;
using molva::Printed;

// The names that begin with EvaluatePartition keep that beginning.
struct QualityNumbers {
  QualityNumbers(int clusters, int nrows, int nclasses)
      : nclusters(clusters),
        pwgts(AllocIntsSet(nclusters, 0, "EvaluateClusters: pwgts")),
        cintsim(AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsim")),
        cintsdev(AllocFloatsSet(nclusters, 0, "EvaluateClusters: cintsdev")),
        izscores(AllocFloatsSet(nrows, 0, "EvaluateClusters: izscores")),
        cextsim(AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsim")),
        cextsdev(AllocFloatsSet(nclusters, 0, "EvaluateClusters: cextsdev")),
        ezscores(AllocFloatsSet(nrows, 0, "EvaluateClusters: ezscores")),
        classdist(molva::AllocIntMatrix(nclusters, nclasses, 0, "EvaluateClusters: classdist")),
        ocldist(AllocIntsSet(nclasses, 0, "EvaluatePartition: ocldist")),
        entropies(AllocFloatsSet(nclusters, 0, "EvaluatePartition: entropies")),
        purities(AllocFloatsSet(nclusters, 0, "EvaluatePartition: purities")),
        fscores(AllocFloatsSet(nclasses, 0, "EvaluatePartition: fscores")) {}

  int nclusters;
  molva::Array<int> pwgts;
  molva::Array<float> cintsim, cintsdev, izscores, cextsim, cextsdev, ezscores;
  molva::Rows<int> classdist;  // rows of each class in each cluster
  molva::Array<int> ocldist;   // clustered rows of each class
  molva::Array<float> entropies, purities, fscores;
  float entropy = 0;
  float purity = 0;
  float fscore = 0;
};

QualityNumbers MeasureQuality(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                              std::span<const int> ptree) {
  QualityNumbers numbers(clusters.count, mat.nrows, mat.nclasses);
  MeasureClusters(RunInput(params, mat, clusters), {.pwgts = numbers.pwgts,
                                                    .cintsim = numbers.cintsim,
                                                    .cintsdev = numbers.cintsdev,
                                                    .izscores = numbers.izscores,
                                                    .cextsim = numbers.cextsim,
                                                    .cextsdev = numbers.cextsdev,
                                                    .ezscores = numbers.ezscores});
  const std::int64_t total =
      CountClasses(mat.classes, clusters.part, numbers.classdist, numbers.ocldist);
  for (int c = 0; c < clusters.count; ++c) {
    numbers.entropies[c] = ComputeEntropy(mat.nclasses, total, numbers.ocldist, numbers.pwgts[c],
                                          numbers.classdist[c]);
    numbers.purities[c] =
        ComputePurity(mat.nclasses, total, numbers.ocldist, numbers.pwgts[c], numbers.classdist[c]);
  }
  numbers.entropy = WeightedAverage(numbers.pwgts, numbers.entropies, total);
  numbers.purity = WeightedAverage(numbers.pwgts, numbers.purities, total);
  if (!ptree.empty() && mat.nclasses >= 2) {
    ComputeFScores(mat.nclasses, mat.nrows, mat.classes, numbers.ocldist, ptree, numbers.fscores);
    numbers.fscore = WeightedAverage(numbers.ocldist, numbers.fscores, total);
  }
  return numbers;
}

std::string RuleLine(int nclasses) {
  const auto length = std::max<std::int64_t>(72, 5 * std::int64_t{nclasses} + 52);
  return std::string(static_cast<std::size_t>(length), '-');
}

void PrintSimilarities(const QualityNumbers& numbers, int c) {
  std::printf("%3d %5d %+5.3f %+5.3f %+5.3f %+5.3f ", c, numbers.pwgts[c],
              Printed(numbers.cintsim[c]), Printed(numbers.cintsdev[c], numbers.cintsim[c]),
              Printed(numbers.cextsim[c]), Printed(numbers.cextsdev[c], numbers.cextsim[c]));
}

// Names are cut to four characters.
void PrintClassNames(const Matrix& mat) {
  for (int k = 0; k < mat.nclasses; ++k) std::printf("%4.4s ", mat.classnames[k]);
}

// The heading of a table with classes; with the complete tree also what it says of each class.
void PrintSolution(const RunParams& params, const Matrix& mat, const QualityNumbers& numbers,
                   bool with_tree, float crvalue, const std::string& rule) {
  std::printf("%d-way clustering: [%s=%.2e], Entropy: %.3f, Purity: %.3f", numbers.nclusters,
              CriterionName(params.crfun), Printed(crvalue), Printed(numbers.entropy, 0),
              Printed(numbers.purity, 0));
  if (!with_tree) {
    std::printf("\n");
    return;
  }
  std::printf(", FScore: %.3f\n%s\n", Printed(numbers.fscore, 0), rule.c_str());
  std::printf("         Class Name:  ");
  PrintClassNames(mat);
  std::printf("\n         Class Size:  ");
  for (const int size : numbers.ocldist) std::printf("%4d ", size);
  std::printf("\n  Max F-Score Value:  ");
  for (const float fscore : numbers.fscores) std::printf("%.2f ", Printed(fscore, 0));
  std::printf("\n");
}

void PrintWithClasses(const RunParams& params, const Matrix& mat, const QualityNumbers& numbers,
                      bool with_tree, float crvalue) {
  const std::string rule = RuleLine(mat.nclasses);
  std::printf("%s\n", rule.c_str());
  PrintSolution(params, mat, numbers, with_tree, crvalue, rule);
  std::printf("%s\n", rule.c_str());
  std::printf("cid  Size  ISim  ISdev   ESim  ESdev  Entpy Purty | ");
  PrintClassNames(mat);
  std::printf("\n%s\n", rule.c_str());
  for (int c = 0; c < numbers.nclusters; ++c) {
    PrintSimilarities(numbers, c);
    std::printf("%5.3f %5.3f | ", Printed(numbers.entropies[c], 0),
                Printed(numbers.purities[c], 0));
    for (const int count : numbers.classdist[c]) std::printf("%4d ", count);
    std::printf("\n");
  }
  std::printf("%s\n", rule.c_str());
}

void PrintWithoutClasses(const RunParams& params, const Matrix& mat, const QualityNumbers& numbers,
                         float crvalue) {
  const std::string rule = RuleLine(mat.nclasses);
  std::printf("%s\n", rule.c_str());
  std::printf("%d-way clustering solution: [%s=%.2e]\n", numbers.nclusters,
              CriterionName(params.crfun), Printed(crvalue));
  std::printf("%s\n", rule.c_str());
  std::printf("cid  Size  ISim  ISdev   ESim  ESdev  | \n%s\n", rule.c_str());
  for (int c = 0; c < numbers.nclusters; ++c) {
    PrintSimilarities(numbers, c);
    std::printf("| \n");
  }
  std::printf("%s\n", rule.c_str());
}

}  // namespace

void EvaluateClusters(const RunParams& params, const Matrix& mat, const Clusters& clusters,
                      std::span<const int> ptree, float crvalue) {
  const QualityNumbers numbers = MeasureQuality(params, mat, clusters, ptree);
  if (mat.nclasses >= 2) {
    PrintWithClasses(params, mat, numbers, !ptree.empty(), crvalue);
  } else {
    PrintWithoutClasses(params, mat, numbers, crvalue);
  }
}

}  // namespace mardle
