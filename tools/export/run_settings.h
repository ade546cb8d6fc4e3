// SPDX-License-Identifier: MIT
//
// The parameters under which a run is measured anew: from the command line, the record of the run,
// or, when neither tells them, the defaults.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/export/request.h"
#include "tools/export/run_record.h"

namespace mardle::exporting {

struct RunSettings {
  RunParams params;
  std::optional<RunRecord> record;
  std::vector<std::string> warnings;
};

// A record that is named has to be of this run; one that stands beside the clustering and is not
// gives a warning, and so does a run of which nothing is told. Throws std::invalid_argument when
// the command line contradicts the record.
RunSettings SettleRun(const Request& request);

}  // namespace mardle::exporting
