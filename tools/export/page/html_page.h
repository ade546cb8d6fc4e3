// SPDX-License-Identifier: MIT
//
// A run as one self-contained HTML page: it asks the network for nothing and works from a file.
// Everything but the list of rows is there without its script.
#pragma once

#include <ostream>

#include "tools/export/clustering.h"
#include "tools/export/page/page_numbers.h"

namespace mardle::exporting {

void WriteHtmlPage(const PageRun& run, const Clustering& clustering, std::ostream& out);

}  // namespace mardle::exporting
