// SPDX-License-Identifier: MIT
#include "programs/io/read_matrix.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "programs/io/labels.h"
#include "programs/io/number_text.h"

namespace mardle {
namespace {

using molva::FatalError;

// Reads the next header number, as a scan for "%d" would, and moves the text behind it. Returns
// false when there is none.
bool ScanHeaderNumber(const char*& text, int& number) {
  char* end = nullptr;
  const long value = std::strtol(text, &end, 10);
  if (end == text) return false;
  if (value < INT_MIN || value > INT_MAX) {
    text += std::strspn(text, " \t\n\v\f\r");
    FatalError("ReadMat: The number %.*s in the header of the input file is out of range!\n",
               static_cast<int>(std::min<std::ptrdiff_t>(end - text, 80)), text);
  }
  number = static_cast<int>(value);
  text = end;
  return true;
}

// Moves the text to its next field. Returns false when none is left.
bool FindField(const char*& text) {
  while (*text == ' ' || *text == '\t') ++text;
  return *text != '\0';
}

// Takes a field for a 0-based column and moves the text behind it. A column number below the range
// of an int stays a negative column.
long TakeColumn(const char*& text) {
  const Parsed<long> number = ParseLong(text);
  text = number.end;
  return std::max<long>(number.value, INT_MIN + 1L) - 1;
}

// The same for a value.
float TakeValue(const char*& text) {
  const Parsed<double> number = ParseDouble(text);
  text = number.end;
  return static_cast<float>(number.value);
}

void RequireValues(int i, int ncols, std::int64_t count) {
  if (count == ncols) return;
  FatalError("Input Error: Row %d of the input file has %lld entries instead of %d!\n", i,
             static_cast<long long>(count), ncols);
}

// Hands each entry of one line to store(column, value); `count` is how many came before the line.
template <typename Store>
void ForEachEntry(const char* line, int i, std::int64_t count, int ncols, Store store) {
  while (FindField(line)) {
    const long column = TakeColumn(line);
    if (column >= ncols) {
      FatalError("Column number is greater than ncols. Ncols=%d, ColNum=%ld, Row=%d\n", ncols,
                 column, i);
    }
    if (!FindField(line)) {
      FatalError("Value could not be found for column! Row:%d, NNZ:%lld\n", i,
                 static_cast<long long>(count));
    }
    store(static_cast<int>(column), TakeValue(line));
    ++count;
  }
}

// Stores the entries of one line from position `count` on and returns the count after them.
// Entries beyond the header's number are counted but not stored.
std::int64_t ReadSparseRow(const char* line, int i, std::int64_t count, const MatrixHeader& header,
                           Matrix& mat) {
  ForEachEntry(line, i, count, header.ncols, [&](int column, float value) {
    if (count < header.nnz) {
      mat.rowind[count] = column;
      mat.rowval[count] = value;
    }
    ++count;
  });
  return count;
}

// Stores the values of one line and returns how many there are; those beyond ncols are counted but
// not stored.
std::int64_t ReadDenseRow(const char* line, int ncols, float* row) {
  std::int64_t count = 0;
  while (FindField(line)) {
    const float value = TakeValue(line);
    if (count < ncols) row[count] = value;
    ++count;
  }
  return count;
}

}  // namespace

void RefuseRowCount(int wanted, int found) {
  FatalError(
      "ReadMat: Something wrong with the number of rows in the input file. Nrows=%d, ActualNrows=%d\n",
      wanted, found);
}

void RequireEntries(const MatrixHeader& header, std::int64_t count) {
  if (count == header.nnz) return;
  FatalError(
      "ReadMat: Something wrong with the number of nonzeros in the input file. NNZ=%d, ActualNNZ=%lld\n",
      header.nnz, static_cast<long long>(count));
}

void ReadMatrix(const RunParams& params, Matrix& mat) {
  const char* filename = params.filename.get();
  if (molva::FileExists(filename) == 0) {
    FatalError("Matrix file to be clusterd (%s) does not exist!\n", filename);
  }
  {
    const molva::File file = molva::RVfopen(filename, "r", "ReadMatrix: Matrix");
    LineReader reader(file.get());
    const MatrixHeader header = ReadHeader(reader);
    InitMatrix(mat);
    mat.nrows = header.nrows;
    mat.ncols = header.ncols;
    if (params.denseinput) {
      ReadDenseRows(reader, header, mat);
    } else {
      ReadSparseRows(reader, header, mat);
    }
  }
  ReadLabelsAndClasses(params, mat);
}

MatrixHeader ReadHeader(LineReader& reader) {
  MatrixHeader header;
  const char* text = reader.Next();
  if (text == nullptr) return header;
  for (int* number : {&header.nrows, &header.ncols, &header.nnz}) {
    if (!ScanHeaderNumber(text, *number)) break;
  }
  return header;
}

void AppendSparseRow(const char* line, int i, std::int64_t count, int ncols,
                     std::vector<int>& columns, std::vector<float>& values) {
  ForEachEntry(line, i, count, ncols, [&](int column, float value) {
    columns.push_back(column);
    values.push_back(value);
  });
}

void AppendDenseRow(const char* line, int i, int ncols, std::vector<float>& values) {
  const std::size_t begin = values.size();
  values.resize(begin + static_cast<std::size_t>(ncols));
  RequireValues(i, ncols, ReadDenseRow(line, ncols, values.data() + begin));
}

void ReadSparseRows(LineReader& reader, const MatrixHeader& header, Matrix& mat) {
  mat.rowptr = molva::AllocInts(std::int64_t{header.nrows} + 1, "ReadMat: rowptr");
  mat.rowind = molva::AllocInts(header.nnz, "ReadMat: rowind");
  mat.rowval = molva::AllocFloats(header.nnz, "ReadMat: rowval");
  std::int64_t count = 0;
  if (mat.rowptr) mat.rowptr[0] = 0;
  for (int i = 0; i < header.nrows; ++i) {
    const char* line = reader.Next();
    if (line == nullptr) RefuseRowCount(header.nrows, i);
    count = ReadSparseRow(line, i, count, header, mat);
    mat.rowptr[i + 1] = static_cast<int>(std::min<std::int64_t>(count, header.nnz));
  }
  RequireEntries(header, count);
  if (header.nrows < 0) RefuseRowCount(header.nrows, 0);
}

void ReadDenseRows(LineReader& reader, const MatrixHeader& header, Matrix& mat) {
  const std::int64_t cells = static_cast<std::int64_t>(header.nrows) * header.ncols;
  mat.rowval = molva::AllocFloats(cells, "ReadMat: rowval");
  for (int i = 0; i < header.nrows; ++i) {
    const char* line = reader.Next();
    if (line == nullptr) RefuseRowCount(header.nrows, i);
    const std::int64_t count =
        ReadDenseRow(line, header.ncols, mat.rowval.data() + std::int64_t{i} * header.ncols);
    RequireValues(i, header.ncols, count);
  }
  if (header.nrows < 0) RefuseRowCount(header.nrows, 0);
}

}  // namespace mardle
