// SPDX-License-Identifier: MIT
#include "tools/import/numpy_matrix.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <utility>

#include "tools/import/matrix_value.h"
#include "tools/import/npy_array.h"
#include "tools/import/triples.h"
#include "tools/import/zip_archive.h"
#include "tools/text/fields.h"

namespace mardle::tools {
namespace {

constexpr std::string_view kExtension = ".npy";
constexpr char kNotRising[] = "'indptr' does not rise from 0 to the number of entries";

std::string ColumnName(std::size_t column) { return "column " + std::to_string(column + 1); }

MatrixSummary ImportArray(const NpyArray& array, const NumpyRequest& request,
                          std::vector<std::string>& notes) {
  if (array.shape().size() != 2 || !array.IsNumeric()) {
    throw FileError({request.path, 0}, "no matrix: an array of numbers in " +
                                           std::to_string(array.shape().size()) +
                                           " dimensions instead of 2");
  }
  const std::int64_t rows = array.shape()[0];
  const std::int64_t columns = array.shape()[1];
  if (columns > INT_MAX) throw FileError({request.path, 0}, "more columns than mardle takes");
  request.labels.RequireRows(rows);
  request.labels.RequireColumns(columns);
  DenseRows matrix(request.output, request.preparation, static_cast<std::size_t>(columns),
                   ColumnName);
  std::vector<double> values(static_cast<std::size_t>(columns));
  for (std::int64_t i = 0; i < rows && columns > 0; ++i) {
    const Place place{request.path + ", row " + std::to_string(i + 1), 0};
    for (std::int64_t j = 0; j < columns; ++j) {
      const double value = array.At(i, j);
      const auto column = static_cast<std::size_t>(j);
      values[column] = std::isnan(value) ? value : CheckedValue(value, place, ColumnName(column));
    }
    matrix.AddRow(values, request.labels.OfRow(i), place);
  }
  return matrix.Finish(request.labels.columns(), notes);
}

// The arrays of a sparse matrix, each checked when it is taken.
class SparseArrays {
 public:
  SparseArrays(const ZipArchive& archive, std::string path)
      : archive_(archive), path_(std::move(path)) {}

  [[noreturn]] void Fail(const std::string& message) const { throw FileError({path_, 0}, message); }

  NpyArray Take(const std::string& name) const {
    auto contents = archive_.Contents(name + std::string(kExtension));
    if (!contents) Fail("there is no array '" + name + "'");
    return {*std::move(contents), {path_ + ": " + name, 0}};
  }

  // A list of whole numbers.
  NpyArray TakeIndices(const std::string& name) const {
    NpyArray array = Take(name);
    if (array.shape().size() != 1 || !array.IsWhole()) {
      Fail("'" + name + "' is no list of whole numbers");
    }
    return array;
  }

  NpyArray TakeValues(std::size_t wanted) const {
    NpyArray array = Take("data");
    if (array.shape().size() != 1 || !array.IsNumeric()) Fail("'data' is no list of numbers");
    RequireSize("data", array, wanted);
    return array;
  }

  void RequireSize(const char* name, const NpyArray& array, std::size_t wanted) const {
    if (array.size() != wanted) {
      Fail("'" + std::string(name) + "' holds " + std::to_string(array.size()) +
           " numbers instead of " + std::to_string(wanted));
    }
  }

  int IndexBelow(std::int64_t index, int end, const char* name) const {
    if (index < 0 || index >= end) {
      Fail("'" + std::string(name) + "' holds " + std::to_string(index) +
           ", which is not between 0 and " + std::to_string(end - 1));
    }
    return static_cast<int>(index);
  }

  const std::string& path() const { return path_; }

 private:
  const ZipArchive& archive_;
  std::string path_;
};

TripleMatrix SizeOf(const SparseArrays& arrays) {
  const NpyArray shape = arrays.TakeIndices("shape");
  arrays.RequireSize("shape", shape, 2);
  for (const std::size_t axis : {0, 1}) {
    if (shape.Integer(axis) < 0 || shape.Integer(axis) > INT_MAX) {
      arrays.Fail("more rows or columns than mardle takes");
    }
  }
  return {.path = arrays.path(),
          .rows = static_cast<int>(shape.Integer(0)),
          .columns = static_cast<int>(shape.Integer(1))};
}

double ValueAt(const NpyArray& values, std::size_t position, const SparseArrays& arrays) {
  return CheckedValue(values.Number(position), {arrays.path(), 0},
                      "the value number " + std::to_string(position + 1));
}

// By rows, or by columns when `by_columns`: for each of them where its entries begin.
std::vector<Triple> TakeCompressed(const SparseArrays& arrays, const TripleMatrix& matrix,
                                   bool by_columns) {
  const int lines = by_columns ? matrix.columns : matrix.rows;
  const int across = by_columns ? matrix.rows : matrix.columns;
  const NpyArray starts = arrays.TakeIndices("indptr");
  arrays.RequireSize("indptr", starts, static_cast<std::size_t>(lines) + 1);
  const NpyArray indices = arrays.TakeIndices("indices");
  const NpyArray values = arrays.TakeValues(indices.size());
  std::vector<Triple> triples;
  std::int64_t position = starts.Integer(0);
  if (position != 0) arrays.Fail(kNotRising);
  for (int line = 0; line < lines; ++line) {
    const std::int64_t end = starts.Integer(static_cast<std::size_t>(line) + 1);
    if (end < position || end > static_cast<std::int64_t>(indices.size())) {
      arrays.Fail(kNotRising);
    }
    for (; position < end; ++position) {
      const auto at = static_cast<std::size_t>(position);
      const int index = arrays.IndexBelow(indices.Integer(at), across, "indices");
      const double value = ValueAt(values, at, arrays);
      triples.push_back(by_columns ? Triple{index, line, value} : Triple{line, index, value});
    }
  }
  return triples;
}

std::vector<Triple> TakeEntries(const SparseArrays& arrays, const TripleMatrix& matrix) {
  const NpyArray rows = arrays.TakeIndices("row");
  const NpyArray columns = arrays.TakeIndices("col");
  arrays.RequireSize("col", columns, rows.size());
  const NpyArray values = arrays.TakeValues(rows.size());
  std::vector<Triple> triples;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    triples.push_back({arrays.IndexBelow(rows.Integer(i), matrix.rows, "row"),
                       arrays.IndexBelow(columns.Integer(i), matrix.columns, "col"),
                       ValueAt(values, i, arrays)});
  }
  return triples;
}

MatrixSummary ImportSparse(const ZipArchive& archive, const NumpyRequest& request) {
  const SparseArrays arrays(archive, request.path);
  const std::string format = arrays.Take("format").Text();
  const TripleMatrix matrix = SizeOf(arrays);
  std::vector<Triple> triples;
  if (format == "csr" || format == "csc") {
    triples = TakeCompressed(arrays, matrix, format == "csc");
  } else if (format == "coo") {
    triples = TakeEntries(arrays, matrix);
  } else {
    arrays.Fail("a sparse matrix of the format " + Quoted(format) +
                "; csr, csc and coo are supported, and its method tocsr() makes one");
  }
  if (!request.output.drop_empty) {
    RefuseRowsThatAreNotThere({request.path, 0}, matrix.rows,
                              static_cast<long long>(triples.size()));
  }
  return WriteTriples(triples, matrix, request.output, request.labels);
}

// The one file in an archive that holds no sparse matrix.
std::string OnlyArray(const ZipArchive& archive, const std::string& path) {
  if (archive.names().size() == 1) return archive.names()[0];
  std::string message =
      "neither a sparse matrix that scipy.sparse.save_npz has saved nor a single array; the arrays "
      "are";
  for (const std::string& name : archive.names()) {
    message += (&name == archive.names().data() ? " " : ", ") +
               std::string(name, 0, name.rfind(kExtension));
  }
  throw FileError({path, 0}, archive.names().empty() ? "an archive without arrays" : message);
}

}  // namespace

MatrixSummary ImportNpy(std::string bytes, const NumpyRequest& request,
                        std::vector<std::string>& notes) {
  return ImportArray({std::move(bytes), {request.path, 0}}, request, notes);
}

MatrixSummary ImportNpz(const std::string& bytes, const NumpyRequest& request,
                        std::vector<std::string>& notes) {
  const ZipArchive archive(bytes, request.path);
  if (auto format = archive.Contents("format.npy")) return ImportSparse(archive, request);
  const std::string name = OnlyArray(archive, request.path);
  return ImportNpy(archive.Contents(name).value_or(""), request, notes);
}

}  // namespace mardle::tools
