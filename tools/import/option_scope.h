// SPDX-License-Identifier: MIT
//
// Which options of mardle-import mean something for which format.
#pragma once

#include "tools/import/import_options.h"

namespace mardle::tools {

// Throws std::invalid_argument when an option is given that the format has no use for.
void RefuseIdleOptions(const ImportOptions& options, InputFormat format);

}  // namespace mardle::tools
