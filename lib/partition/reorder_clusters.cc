// SPDX-License-Identifier: MIT
#include "lib/partition/reorder_clusters.h"

#include "lib/matrix/composites.h"
#include "lib/support/sort.h"
#include "lib/support/vectors.h"
#include "lib/support/wide.h"

namespace molva {
namespace {

// Dot products are single precision, the rest is wide until the key is stored.
float InternalMinusExternal(Span<const float> composite, Span<const float> whole, int size,
                            int nrows) {
  const Wide internal = DotFloats(composite, composite);
  const Wide external = DotFloats(composite, whole) - internal;
  return static_cast<float>(internal / static_cast<Wide>(CountProduct(size, size)) -
                            external / static_cast<Wide>(CountProduct(nrows - size, size)));
}

}  // namespace

void ReorderClusters(const PreparedMatrix& mat, int nparts, Span<int> part) {
  Rows<float> centers = AllocFloatMatrix(nparts, mat.ncols, 0, "ReorderClusters: centers");
  Array<float> gcenter = AllocFloatsSet(mat.ncols, 0, "ReorderClusters: gcenter");
  Array<int> pwgts = AllocIntsSet(nparts, 0, "ReorderClusters: pwgts");
  Array<int> pmap = AllocIntsSet(nparts, 0, "ReorderClusters: pmap ");
  Array<KeyValue> fcand = AllocKeyValues(nparts, "ReorderClusters: fcand");

  AccumulateComposites(mat, part, pwgts, centers, gcenter);
  for (int k = 0; k < nparts; ++k) {
    fcand[k] = {InternalMinusExternal(centers[k], gcenter, pwgts[k], mat.nrows), k};
  }
  SortKeyValuesDecreasing(fcand);
  for (int position = 0; position < nparts; ++position) pmap[fcand[position].value] = position;
  for (int& k : part) k = pmap[k];
}

}  // namespace molva
