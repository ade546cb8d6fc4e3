// SPDX-License-Identifier: MIT
//
// What the files that a run leaves are called: one name, and an ending for each.
#pragma once

#include <array>

namespace mardle::tools {

struct RunFile {
  const char* ending;
  const char* role;  // in the record
};
inline constexpr std::array<RunFile, 7> kRunFiles = {{{".mat", "matrix"},
                                                      {".mat.rlabel", "row-labels"},
                                                      {".mat.clabel", "column-labels"},
                                                      {".mat.rclass", "row-classes"},
                                                      {".clustering", "clustering"},
                                                      {".tree", "tree"},
                                                      {".clusters.tree", "cluster-tree"}}};
// These two are not listed in the record.
inline constexpr char kRecordEnding[] = ".run.json";
inline constexpr char kPageEnding[] = ".html";

}  // namespace mardle::tools
