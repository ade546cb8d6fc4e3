// SPDX-License-Identifier: MIT
#include "tests/testing/plain_reader.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "lib/support/fatal.h"

namespace testing_support {
namespace {

using molva::FatalError;

constexpr int kLineBuffer = 131072;

// The next line without trailing blanks, tabs and newlines; null at the end.
char* NextLine(char* buffer, std::FILE* stream) {
  if (std::fgets(buffer, kLineBuffer, stream) == nullptr) return nullptr;
  std::size_t length = std::strlen(buffer);
  while (length > 0 && std::strchr(" \t\n", buffer[length - 1]) != nullptr) --length;
  buffer[length] = '\0';
  return buffer;
}

struct Header {
  int nrows = 0;
  int ncols = 0;
  int nnz = 0;
};

Header ReadHeader(char* text) {
  Header header;
  for (int* number : {&header.nrows, &header.ncols, &header.nnz}) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text) break;
    if (value < INT_MIN || value > INT_MAX) {
      while (std::strchr(" \t\n\v\f\r", *text) != nullptr) ++text;
      FatalError("ReadMat: The number %.*s in the header of the input file is out of range!\n",
                 static_cast<int>(std::min<std::ptrdiff_t>(end - text, 80)), text);
    }
    *number = static_cast<int>(value);
    text = end;
  }
  return header;
}

[[noreturn]] void RefuseRowCount(int wanted, int found) {
  FatalError(
      "ReadMat: Something wrong with the number of rows in the input file. Nrows=%d, ActualNrows=%d\n",
      wanted, found);
}

void ReadSparseRows(char* buffer, std::FILE* stream, const Header& header, mardle::Matrix& mat) {
  mat.rowptr = molva::AllocInts(std::int64_t{header.nrows} + 1, "ReadMat: rowptr");
  mat.rowind = molva::AllocInts(header.nnz, "ReadMat: rowind");
  mat.rowval = molva::AllocFloats(header.nnz, "ReadMat: rowval");
  std::int64_t count = 0;
  if (mat.rowptr) mat.rowptr[0] = 0;
  for (int i = 0; i < header.nrows; ++i) {
    char* line = NextLine(buffer, stream);
    if (line == nullptr) RefuseRowCount(header.nrows, i);
    for (char* token = std::strtok(line, " \t"); token != nullptr;
         token = std::strtok(nullptr, " \t")) {
      const long column =
          std::max<long>(std::strtol(token, nullptr, 10), static_cast<long>(INT_MIN) + 1) - 1;
      if (column >= header.ncols) {
        FatalError("Column number is greater than ncols. Ncols=%d, ColNum=%ld, Row=%d\n",
                   header.ncols, column, i);
      }
      token = std::strtok(nullptr, " \t");
      if (token == nullptr) {
        FatalError("Value could not be found for column! Row:%d, NNZ:%lld\n", i,
                   static_cast<long long>(count));
      }
      if (count < header.nnz) {
        mat.rowind[count] = static_cast<int>(column);
        mat.rowval[count] = static_cast<float>(std::strtod(token, nullptr));
      }
      ++count;
    }
    mat.rowptr[i + 1] = static_cast<int>(std::min<std::int64_t>(count, header.nnz));
  }
  if (count != header.nnz) {
    FatalError(
        "ReadMat: Something wrong with the number of nonzeros in the input file. NNZ=%d, ActualNNZ=%lld\n",
        header.nnz, static_cast<long long>(count));
  }
}

void ReadDenseRows(char* buffer, std::FILE* stream, const Header& header, mardle::Matrix& mat) {
  mat.rowval = molva::AllocFloats(std::int64_t{header.nrows} * header.ncols, "ReadMat: rowval");
  float* row = mat.rowval.data();
  for (int i = 0; i < header.nrows; ++i) {
    char* line = NextLine(buffer, stream);
    if (line == nullptr) RefuseRowCount(header.nrows, i);
    std::int64_t count = 0;
    for (char* token = std::strtok(line, " \t"); token != nullptr;
         token = std::strtok(nullptr, " \t")) {
      if (count < header.ncols) row[count] = static_cast<float>(std::strtod(token, nullptr));
      ++count;
    }
    if (count != header.ncols) {
      FatalError("Input Error: Row %d of the input file has %lld entries instead of %d!\n", i,
                 static_cast<long long>(count), header.ncols);
    }
    row += count;
  }
}

}  // namespace

void PlainReadMatrix(std::FILE* stream, bool dense, mardle::Matrix& mat) {
  molva::Array<char> buffer(kLineBuffer, "PlainReadMatrix: buffer");
  char* first_line = NextLine(buffer.data(), stream);
  const Header header = first_line == nullptr ? Header{} : ReadHeader(first_line);
  mardle::InitMatrix(mat);
  mat.nrows = header.nrows;
  mat.ncols = header.ncols;
  if (dense) {
    ReadDenseRows(buffer.data(), stream, header, mat);
  } else {
    ReadSparseRows(buffer.data(), stream, header, mat);
  }
  if (header.nrows < 0) RefuseRowCount(header.nrows, 0);
}

}  // namespace testing_support
