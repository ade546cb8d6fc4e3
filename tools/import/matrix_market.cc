// SPDX-License-Identifier: MIT
#include "tools/import/matrix_market.h"

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/import/matrix_value.h"
#include "tools/import/triples.h"
#include "tools/text/fields.h"
#include "tools/text/numbers.h"

namespace mardle::tools {
namespace {

enum class Symmetry { kGeneral, kSymmetric, kSkew };

struct Banner {
  bool array = false;
  bool pattern = false;
  Symmetry symmetry = Symmetry::kGeneral;
};

struct Size {
  int rows = 0;
  int columns = 0;
  long long entries = 0;
};

std::string AsciiLowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

Symmetry SymmetryNamed(const std::string& name, const InputLines& input) {
  if (name == "general") return Symmetry::kGeneral;
  if (name == "symmetric") return Symmetry::kSymmetric;
  if (name != "skew-symmetric") input.Fail("symmetry " + Quoted(name) + " is not supported");
  return Symmetry::kSkew;
}

Banner ReadBanner(InputLines& input) {
  std::string_view line;
  if (!input.Next(line)) input.Fail("the file is empty");
  const std::string lower = AsciiLowerCase(line);
  const std::vector<std::string_view> fields = FieldsOf(lower);
  if (fields.size() != 5 || fields[0] != "%%matrixmarket" || fields[1] != "matrix") {
    input.Fail("not a line '%%MatrixMarket matrix FORMAT FIELD SYMMETRY'");
  }
  Banner banner;
  banner.array = fields[2] == "array";
  if (!banner.array && fields[2] != "coordinate") {
    input.Fail("format " + Quoted(fields[2]) + " is not supported");
  }
  banner.pattern = fields[3] == "pattern" && !banner.array;
  if (!banner.pattern && fields[3] != "real" && fields[3] != "integer" && fields[3] != "double") {
    input.Fail("field " + Quoted(fields[3]) + " is not supported");
  }
  banner.symmetry = SymmetryNamed(std::string(fields[4]), input);
  return banner;
}

// The fields of the next line that is neither blank nor a comment. False at the end of the file.
bool NextFields(InputLines& input, std::vector<std::string_view>& fields) {
  std::string_view line;
  while (input.Next(line)) {
    if (line.starts_with('%')) continue;
    fields = FieldsOf(line);
    if (!fields.empty()) return true;
  }
  return false;
}

long long CountIn(std::string_view text, long long most, const InputLines& input) {
  const auto count = ParseInteger(text);
  if (!count || *count < 0) input.Fail("no number of rows, columns or entries: " + Quoted(text));
  if (*count > most) input.Fail("larger than mardle takes: " + Quoted(text));
  return *count;
}

Size ReadSize(InputLines& input, const Banner& banner) {
  std::vector<std::string_view> fields;
  if (!NextFields(input, fields)) input.Fail("the file ends before the line with its size");
  if (fields.size() != (banner.array ? 2 : 3)) {
    input.Fail(banner.array ? "not a line 'ROWS COLUMNS'" : "not a line 'ROWS COLUMNS ENTRIES'");
  }
  Size size;
  size.rows = static_cast<int>(CountIn(fields[0], INT_MAX, input));
  size.columns = static_cast<int>(CountIn(fields[1], INT_MAX, input));
  if (!banner.array) size.entries = CountIn(fields[2], LLONG_MAX, input);
  if (banner.symmetry != Symmetry::kGeneral && size.rows != size.columns) {
    input.Fail("a symmetric matrix has as many rows as columns");
  }
  return size;
}

int IndexIn(std::string_view text, int most, const char* what, const InputLines& input) {
  const auto index = ParseInteger(text);
  if (!index || *index < 1 || *index > most) {
    input.Fail(std::string(what) + " " + Quoted(text) + " is not between 1 and " +
               std::to_string(most));
  }
  return static_cast<int>(*index - 1);
}

void Add(std::vector<Triple>& triples, Triple triple, Symmetry symmetry) {
  triples.push_back(triple);
  if (symmetry == Symmetry::kGeneral || triple.row == triple.column) return;
  const double mirrored = symmetry == Symmetry::kSkew ? -triple.value : triple.value;
  triples.push_back({triple.column, triple.row, mirrored});
}

void RefuseMore(InputLines& input, long long wanted) {
  std::vector<std::string_view> fields;
  if (NextFields(input, fields)) {
    input.Fail("more entries than the " + std::to_string(wanted) + " of the size line");
  }
}

std::vector<Triple> ReadCoordinates(InputLines& input, const Banner& banner, const Size& size,
                                    Progress& progress) {
  std::vector<Triple> triples;
  std::vector<std::string_view> fields;
  for (long long count = 0; count < size.entries; ++count) {
    if (!NextFields(input, fields)) {
      input.Fail("the file ends after " + std::to_string(count) + " of " +
                 std::to_string(size.entries) + " entries");
    }
    if (fields.size() != (banner.pattern ? 2 : 3)) {
      input.Fail(banner.pattern ? "not a line 'ROW COLUMN'" : "not a line 'ROW COLUMN VALUE'");
    }
    const int row = IndexIn(fields[0], size.rows, "row", input);
    const int column = IndexIn(fields[1], size.columns, "column", input);
    const double value = banner.pattern ? 1 : MatrixValue(fields[2], input.place(), "the value");
    Add(triples, {row, column, value}, banner.symmetry);
    progress.Step();
  }
  RefuseMore(input, size.entries);
  return triples;
}

// Column by column; under a symmetry from the diagonal down, or from below it.
std::vector<Triple> ReadArray(InputLines& input, const Banner& banner, const Size& size,
                              Progress& progress) {
  std::vector<Triple> triples;
  std::vector<std::string_view> fields;
  long long count = 0;
  for (int column = 0; column < size.columns; ++column) {
    const int first = banner.symmetry == Symmetry::kGeneral ? 0
                      : banner.symmetry == Symmetry::kSkew  ? column + 1
                                                            : column;
    for (int row = first; row < size.rows; ++row, ++count) {
      if (!NextFields(input, fields)) {
        input.Fail("the file ends after " + std::to_string(count) + " values, too few for " +
                   std::to_string(size.rows) + " rows and " + std::to_string(size.columns) +
                   " columns");
      }
      if (fields.size() != 1) input.Fail("not one value a line");
      const double value = MatrixValue(fields[0], input.place(), "the value");
      if (value != 0) Add(triples, {row, column, value}, banner.symmetry);
      progress.Step();
    }
  }
  RefuseMore(input, count);
  return triples;
}

}  // namespace

MatrixSummary ImportMatrixMarket(InputLines& input, const MatrixOutput& output, bool sparse,
                                 const GivenLabels& labels, Progress& progress) {
  const Banner banner = ReadBanner(input);
  const Size size = ReadSize(input, banner);
  if (!output.drop_empty) {
    const long long entries = banner.array ? 1LL * size.rows * size.columns : size.entries;
    RefuseRowsThatAreNotThere(input.place(), size.rows, entries);
  }
  std::vector<Triple> triples = banner.array ? ReadArray(input, banner, size, progress)
                                             : ReadCoordinates(input, banner, size, progress);
  const TripleMatrix matrix{input.place().path, size.rows, size.columns, banner.array && !sparse};
  return WriteTriples(triples, matrix, output, labels);
}

}  // namespace mardle::tools
