// SPDX-License-Identifier: MIT
#include "programs/run_params.h"

#include "lib/molva.h"

namespace mardle {

void DeriveSettings(RunParams& params) {
  if (!params.rb && !params.direct) params.rb = true;
  if (params.treecrfun == 0) params.treecrfun = params.crfun;
  // Z-scores live in the clustering file, so it is written all the same.
  if (params.zscores) params.nooutput = false;
  // Full rows leave nothing for IDF to tell apart; this beats an explicit column model.
  if (params.simfun == MOLVA_SIM_CORRELATION || params.denseinput) {
    params.colmodel = MOLVA_COL_NONE;
  }
}

}  // namespace mardle
