// SPDX-License-Identifier: MIT
//
// What the files that a run leaves are called: one name, and an ending for each.
#pragma once

#include <array>
#include <string>

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

// Where the record of a clustering file is: its name up to the last ".clustering", then
// ".run.json".
inline std::string RecordPathOf(const std::string& clustering) {
  const std::size_t name = clustering.rfind('/') + 1;  // 0 without a folder
  const std::size_t ending = clustering.rfind(".clustering");
  const bool has_ending = ending != std::string::npos && ending >= name;
  return (has_ending ? clustering.substr(0, ending) : clustering) + kRecordEnding;
}

}  // namespace mardle::tools
