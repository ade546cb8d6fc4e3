// SPDX-License-Identifier: MIT
#include "programs/run_params.h"

#include "lib/molva.h"

namespace mardle {

void DeriveSettings(RunParams& params) {
  if (params.rb == 0 && params.direct == 0) params.rb = 1;
  if (params.treecrfun == 0) params.treecrfun = params.crfun;
  // Z-scores live in the clustering file, so it is written all the same.
  if (params.zscores != 0) params.nooutput = 0;
  // Full rows leave nothing for IDF to tell apart; this beats an explicit column model.
  if (params.simfun == MOLVA_SIM_CORRELATION || params.denseinput != 0) {
    params.colmodel = MOLVA_COL_NONE;
  }
}

}  // namespace mardle
