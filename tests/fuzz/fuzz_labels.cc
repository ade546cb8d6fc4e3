// SPDX-License-Identifier: MIT
//
// Label and class files: the labels, the numbering of the classes and every message must be those
// of a slow reader.
//
// The first three bytes: rows, columns, blocks that may be allocated. Then, for column labels, row
// labels and classes, a byte that tells whether the file is absent (0), named but missing (1) or
// there, and, when it is there, its text up to a byte 0xfe.
#include <algorithm>
#include <optional>

#include "programs/io/labels.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

constexpr char kMissing[] = "/proc/self/fd/none";

struct Companion {
  const char* kind;
  bool named = false;
  std::optional<MemoryFile> file;
  std::string text;

  explicit Companion(const char* kind_of_file) : kind(kind_of_file) {}
  void Take(Input& input) {
    const int choice = input.Byte() % 8;
    named = choice > 0;
    if (choice < 2) return;
    const std::string raw = input.Until(0xfe);
    text = Expanded({reinterpret_cast<const std::uint8_t*>(raw.data()), raw.size()});
    file.emplace(text);
  }
  molva::String Name() const {
    return named ? molva::mystrdup(file ? file->path() : kMissing) : molva::String();
  }
  // The first n lines without what is stripped. Too few of them end the run.
  std::vector<std::string> Lines(int n) const {
    std::vector<std::string> lines;
    std::string_view rest = text;
    while (std::ssize(lines) < n) {
      if (rest.empty()) {
        throw Ended{Format("%s file (%s) ends too early! Lines wanted: %d, lines found: %zu\n",
                           kind, file->path(), n, lines.size())};
      }
      const std::size_t newline = rest.find('\n');
      const std::size_t length = newline == std::string_view::npos ? rest.size() : newline + 1;
      std::string line(rest.substr(0, std::min<std::size_t>(length, 131071)));
      rest.remove_prefix(line.size());
      line.resize(std::min(line.find('\0'), line.size()));
      line.erase(line.find_last_not_of(" \t\n") + 1);
      lines.push_back(line);
    }
    return lines;
  }
  std::vector<std::string> Labels(const char* prefix, int n) const {
    if (file) return Lines(n);
    std::vector<std::string> labels;
    for (int i = 1; i <= n; ++i) labels.push_back(Format("%s%05d", prefix, i));
    return labels;
  }
};

struct Wanted {
  std::vector<std::string> clabels, rlabels, classnames;
  std::vector<int> classes;
};

// By comparing with every class so far.
void NumberClasses(const std::vector<std::string>& labels, Wanted& wanted) {
  for (const std::string& label : labels) {
    const auto known = std::find(wanted.classnames.begin(), wanted.classnames.end(), label);
    wanted.classes.push_back(static_cast<int>(known - wanted.classnames.begin()));
    if (known == wanted.classnames.end()) wanted.classnames.push_back(label);
  }
}

template <typename Table>
void RequireSame(const std::vector<std::string>& wanted, const Table& found, const char* what) {
  Require(found.size() == wanted.size(), std::string("the number of ") + what);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    Require(found[static_cast<int>(i)] == wanted[i], std::string("the ") + what);
  }
}

void RequireSame(const Wanted& wanted, const mardle::Matrix& found) {
  RequireSame(wanted.clabels, found.clabels, "column labels");
  RequireSame(wanted.rlabels, found.rlabels, "row labels");
  RequireSame(wanted.classnames, found.classnames, "class names");
  Require(found.nclasses == std::ssize(wanted.classnames), "the number of classes");
  Require(std::equal(found.classes.begin(), found.classes.end(), wanted.classes.begin(),
                     wanted.classes.end()),
          "the classes");
}

}  // namespace

void FuzzLabels(Bytes bytes) {
  Input input(bytes);
  mardle::Matrix found;
  found.nrows = input.Below(24);
  found.ncols = input.Below(24);
  const int blocks = input.Byte();
  Companion clabel("Column label"), rlabel("Row label"), rclass("Row class");
  for (Companion* companion : {&clabel, &rlabel, &rclass}) companion->Take(input);

  Wanted wanted;
  const std::string wanted_message = FatalMessageOf([&] {
    wanted.clabels = clabel.Labels("col", found.ncols);
    wanted.rlabels = rlabel.Labels("row", found.nrows);
    if (rclass.file && found.nrows > 0) {
      NumberClasses(rclass.Lines(found.nrows), wanted);
    } else {
      wanted.classes.assign(static_cast<std::size_t>(found.nrows), 0);
      wanted.classnames = {"no-class"};
    }
  });

  Sandbox sandbox({.fill = 0xff, .blocks = blocks == 0 ? INT_MAX : blocks});
  const std::string message = FatalMessageOf([&] {
    mardle::RunParams params;
    params.filename = molva::mystrdup(kMissing);
    params.clabelfile = clabel.Name();
    params.rlabelfile = rlabel.Name();
    params.rclassfile = rclass.Name();
    mardle::ReadLabelsAndClasses(params, found);
    if (blocks > 0) return;
    RequireSame(wanted, found);
  });
  if (blocks > 0 && message.starts_with("***Memory allocation failed for ")) return;
  Require(message == wanted_message, "'" + message + "' instead of '" + wanted_message + "'");
}

}  // namespace fuzzing
