// SPDX-License-Identifier: MIT
#include "lib/measure/cluster_features.h"

#include <algorithm>

#include "lib/matrix/composites.h"
#include "lib/support/vectors.h"

namespace molva {

void GetClusterFeatures(const PreparedMatrix& mat, int nparts, Span<const int> part,
                        const FeatureLists& internal, const FeatureLists& external) {
  Rows<float> centers = AllocFloatMatrix(nparts, mat.ncols, 0, "GetClusterFeatures: centers");
  Array<float> gcenter = AllocFloatsSet(mat.ncols, 0, "GetClusterFeatures: gcenter");
  Array<float> vec = AllocFloatsSet(mat.ncols, 0, "GetClusterFeatures: vec");
  Array<KeyValue> fcand = AllocKeyValues(mat.ncols, "GetClusterFeatures: fcand");
  Array<int> pwgts = AllocIntsSet(nparts, 0, "GetClusterFeatures: pwgts");
  Array<float> dnorms = AllocFloats(nparts, "GetClusterFeatures: dnorms");

  AccumulateComposites(mat, part, pwgts, centers, gcenter);
  for (int k = 0; k < nparts; ++k) dnorms[k] = DotFloats(centers[k], centers[k]);
  for (int k = 0; k < nparts; ++k) RankDescriptive(centers[k], dnorms[k], fcand, k, internal);
  for (int k = 0; k < nparts; ++k) {
    // From here on the composite is a unit vector; nothing else needs it.
    const Span<float> composite = centers[k];
    std::transform(gcenter.begin(), gcenter.end(), composite.begin(), vec.begin(),
                   [](float whole, float own) { return whole - own; });
    ScaleToUnitLength(vec);
    ScaleToUnitLength(composite);
    RankDiscriminating(composite, vec, fcand, k, external);
  }
}

}  // namespace molva
