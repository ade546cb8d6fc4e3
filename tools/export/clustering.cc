// SPDX-License-Identifier: MIT
#include "tools/export/clustering.h"

#include <algorithm>

#include "tools/export/fields.h"

namespace mardle::exporting {
namespace {

int TakeCluster(const FieldFile& file, int nrows) {
  const int cluster = file.Int(0);
  if (cluster < -1) file.Refuse("cluster " + std::to_string(cluster) + " is below -1");
  if (cluster >= nrows) {
    file.Refuse("cluster " + std::to_string(cluster) + " is too large for a matrix of " +
                std::to_string(nrows) + " rows");
  }
  return cluster;
}

void TakeLine(const FieldFile& file, int nrows, Clustering& clustering) {
  if (file.line() > static_cast<std::size_t>(nrows)) {
    file.Refuse("the matrix has " + std::to_string(nrows) + " rows, the clustering has more");
  }
  if (file.fields() != 1 && file.fields() != 3) {
    file.Refuse("a cluster, or a cluster and two z-scores, is wanted; fields found: " +
                std::to_string(file.fields()));
  }
  const bool has_zscores = file.fields() == 3;
  if (file.line() > 1 && has_zscores != clustering.has_zscores()) {
    file.Refuse(has_zscores ? "z-scores, which the lines before lack"
                            : "no z-scores, which the lines before have");
  }
  clustering.part.push_back(TakeCluster(file, nrows));
  if (!has_zscores) return;
  clustering.internal_z.push_back(file.Number(1));
  clustering.external_z.push_back(file.Number(2));
}

}  // namespace

Clustering ReadClustering(const std::string& path, int nrows) {
  Clustering clustering;
  FieldFile file(path);
  while (file.Next()) TakeLine(file, nrows, clustering);
  if (clustering.part.size() < static_cast<std::size_t>(nrows)) {
    file.Refuse("the file ends here, the matrix has " + std::to_string(nrows) + " rows");
  }
  for (const int cluster : clustering.part) {
    clustering.nclusters = std::max(clustering.nclusters, cluster + 1);
  }
  return clustering;
}

}  // namespace mardle::exporting
