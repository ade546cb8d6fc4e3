// SPDX-License-Identifier: MIT
#include "programs/io/labels.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "programs/io/line_reader.h"

namespace mardle {
namespace {

// One of the three companion files.
struct Companion {
  const char* kind;    // how messages call it
  const char* suffix;  // of the default name
  const char* block;   // the name of the table of entries
};
constexpr Companion kColumnLabels{"Column label", ".clabel", "ReadMat: clabel"};
constexpr Companion kRowLabels{"Row label", ".rlabel", "ReadMat: rlabels"};
constexpr Companion kRowClasses{"Row class", ".rclass", "ReadMat: rclasses"};

// The name to read from. A named file that is missing is reported here, and its name is used all
// the same, so that the default beside the matrix is not taken in its place.
std::string NameOf(const Companion& companion, const molva::String& given,
                   const char* matrix_name) {
  if (!given) return std::string(matrix_name) + companion.suffix;
  if (molva::FileExists(given.get()) == 0) {
    std::printf("%s file (%s) does not exist! Ignoring the file...\n", companion.kind, given.get());
  }
  return given.get();
}

molva::Strings ReadEntries(const Companion& companion, const std::string& name, int n) {
  molva::Strings entries(n, companion.block);
  const molva::File file = molva::RVfopen(name.c_str(), "r", "ReadMatrix: Matrix");
  LineReader reader(file.get());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const char* line = reader.NextStripped();
    if (line == nullptr) {
      molva::FatalError("%s file (%s) ends too early! Lines wanted: %d, lines found: %zu\n",
                        companion.kind, name.c_str(), n, i);
    }
    entries.Set(i, line);
  }
  return entries;
}

Labels ReadLabels(const Companion& companion, const molva::String& given, const char* matrix_name,
                  const char* prefix, int n) {
  const std::string name = NameOf(companion, given, matrix_name);
  if (molva::FileExists(name.c_str()) == 0) return Labels(n, companion.block, prefix);
  return ReadEntries(companion, name, n);
}

// Numbers the labels 0, 1, ... in the order of first appearance, by exact comparison; returns how
// many there are. `label(i)` is a C string that lives as long as the call. Equal labels are brought
// together by sorting: those of a hash table can be chosen so that all of them fall on one place.
template <typename Label>
int NumberLabels(std::span<int> classes, Label label) {
  std::vector<std::pair<std::string_view, int>> rows;
  for (std::size_t i = 0; i < classes.size(); ++i) rows.emplace_back(label(i), static_cast<int>(i));
  std::sort(rows.begin(), rows.end());
  // First the row where each label appears first, then the number that this row takes.
  int first = 0;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    const auto& [text, row] = rows[r];
    if (r == 0 || text != rows[r - 1].first) first = row;
    classes[static_cast<std::size_t>(row)] = first;
  }
  int count = 0;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const auto where = static_cast<std::size_t>(classes[i]);
    classes[i] = where == i ? count++ : classes[where];
  }
  return count;
}

}  // namespace

void ReadLabelsAndClasses(const RunParams& params, Matrix& mat) {
  const char* matrix_name = params.filename.get();
  mat.clabels = ReadLabels(kColumnLabels, params.clabelfile, matrix_name, "col", mat.ncols);
  mat.rlabels = ReadLabels(kRowLabels, params.rlabelfile, matrix_name, "row", mat.nrows);
  const std::string name = NameOf(kRowClasses, params.rclassfile, matrix_name);
  if (molva::FileExists(name.c_str()) != 0)
    mat.rclasses = ReadEntries(kRowClasses, name, mat.nrows);
  SetUpClasses(mat);
}

void SetUpClasses(Matrix& mat) {
  mat.classes = molva::AllocIntsSet(mat.nrows, 0, "SetUpClasses: class");
  if (!mat.rclasses) {
    mat.nclasses = 1;
    mat.classnames = molva::Strings(1, "SetUpClasses: classnames");
    mat.classnames.Set(0, "no-class");
    return;
  }
  mat.nclasses = NumberLabels(mat.classes, [&mat](std::size_t i) { return mat.rclasses[i]; });
  mat.classnames = molva::Strings(mat.nclasses, "SetUpClasses: classnames");
  for (int i = 0; i < mat.nrows; ++i) {
    const auto k = static_cast<std::size_t>(mat.classes[i]);
    if (mat.classnames[k] == nullptr) mat.classnames.Set(k, mat.rclasses[i]);
  }
}

molva::Array<int> Labels2Classes(int n, const char* const* labels, int& nclasses_out) {
  molva::Array<int> classes = molva::AllocInts(n, "Labels2Classes: part");
  nclasses_out = NumberLabels(classes, [labels](std::size_t i) { return labels[i]; });
  return classes;
}

}  // namespace mardle
