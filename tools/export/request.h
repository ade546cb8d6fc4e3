// SPDX-License-Identifier: MIT
//
// The command line of mardle-export.
#pragma once

#include <set>
#include <string>
#include <variant>

#include "programs/run_params.h"
#include "tools/export/rows.h"
#include "tools/export/tree.h"
#include "tools/export/wording.h"

namespace mardle::exporting {

enum class Format { kTsv, kJson, kNewick, kLinkage, kDot, kHtml, kFeatures, kHeatMap };

// The forms of a table.
enum class TableForm { kTsv, kJson };

struct Request {
  Format format = Format::kTsv;
  MatrixFiles files;  // no matrix: the leaves of a tree are called by their numbers
  std::string clustering;
  std::string tree;    // empty: none
  std::string output;  // empty: standard output
  std::string leaves;  // where the labels of a linkage table's leaves go; empty: nowhere
  HeightsFrom heights = HeightsFrom::kOrder;
  TableForm form = TableForm::kTsv;        // of features
  std::string record;                      // of the run; empty: the one beside the clustering
  std::set<std::string> told;              // the options of the run that were given
  Contents contents = Contents::kUnknown;  // what a page calls rows and columns
  RunParams run;  // the run that a page shows: models, criteria, number of features
};

// What is to be done, or, when there is nothing more to do, the exit status: 0 after --help and
// --version, 2 after a wrong command line, which is reported on standard error.
std::variant<Request, int> ParseRequest(int argc, const char* const* argv);

}  // namespace mardle::exporting
