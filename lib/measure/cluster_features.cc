// SPDX-License-Identifier: MIT
#include "lib/measure/cluster_features.h"

#include <algorithm>

#include "lib/matrix/composites.h"
#include "lib/support/team.h"
#include "lib/support/vectors.h"

namespace molva {

void GetClusterFeatures(const PreparedMatrix& mat, int nparts, Span<const int> part,
                        const FeatureLists& internal, const FeatureLists& external) {
  Rows<float> centers = AllocFloatMatrix(nparts, mat.ncols, 0, "GetClusterFeatures: centers");
  Array<float> gcenter = AllocFloatsSet(mat.ncols, 0, "GetClusterFeatures: gcenter");
  // The next two are one for each member of the team.
  const std::int64_t room = std::int64_t{mat.ncols} * TeamSize();
  Array<float> vecs = AllocFloatsSet(room, 0, "GetClusterFeatures: vec");
  Array<KeyValue> fcands = AllocKeyValues(room, "GetClusterFeatures: fcand");
  Array<int> pwgts = AllocIntsSet(nparts, 0, "GetClusterFeatures: pwgts");
  Array<float> dnorms = AllocFloats(nparts, "GetClusterFeatures: dnorms");

  AccumulateComposites(mat, part, pwgts, centers, gcenter);
  ShareOutOne(nparts, [&](std::int64_t k) { dnorms[k] = DotFloats(centers[k], centers[k]); });
  ShareOut(nparts, 1, [&](std::int64_t first, std::int64_t last, int member) {
    const std::int64_t begin = std::int64_t{member} * mat.ncols;
    const Span<float> vec{vecs.data() + begin, mat.ncols};
    const Span<KeyValue> fcand{fcands.data() + begin, mat.ncols};
    for (auto k = static_cast<int>(first); k < last; ++k) {
      const Span<float> composite = centers[k];
      RankDescriptive(composite, dnorms[k], fcand, k, internal);
      // From here on the composite is a unit vector; nothing else needs it.
      std::transform(gcenter.begin(), gcenter.end(), composite.begin(), vec.begin(),
                     [](float whole, float own) { return whole - own; });
      ScaleToUnitLength(vec);
      ScaleToUnitLength(composite);
      RankDiscriminating(composite, vec, fcand, k, external);
    }
  });
}

}  // namespace molva
