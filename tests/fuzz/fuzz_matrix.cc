// SPDX-License-Identifier: MIT
//
// Matrix files: what is read, and every message, must be what a slow reader makes of the same bytes
// held in memory.
//
// The first byte: bit 0 dense, the rest blocks that may be allocated (0: no limit). Then the file.
// Headers that ask for more than 4 MB end for want of memory; no array comes near the machine's.
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "programs/io/read_matrix.h"
#include "tests/fuzz/harness.h"

namespace fuzzing {
namespace {

using Token = std::string;

struct Contents {
  int nrows = -1;
  int ncols = -1;
  std::vector<int> rowptr;
  std::vector<int> rowind;
  std::vector<float> rowval;
};

// Takes the first line off the text: at most 131071 characters with their newline, ended by the
// first NUL.
std::string TakeLine(std::string_view& text) {
  const std::size_t newline = text.find('\n');
  const std::size_t length = newline == std::string_view::npos ? text.size() : newline + 1;
  const std::string_view line = text.substr(0, std::min<std::size_t>(length, 131071));
  text.remove_prefix(line.size());
  return std::string(line.substr(0, line.find('\0')));
}

std::vector<Token> TokensOf(std::string line) {
  line.erase(line.find_last_not_of(" \t\n") + 1);
  std::vector<Token> tokens;
  std::size_t begin = line.find_first_not_of(" \t");
  while (begin != std::string::npos) {
    const std::size_t end = std::min(line.find_first_of(" \t", begin), line.size());
    tokens.push_back(line.substr(begin, end - begin));
    begin = line.find_first_not_of(" \t", end);
  }
  return tokens;
}

// The slow reader. Errors are thrown as they come.
class SlowReader {
 public:
  explicit SlowReader(std::string_view text) : rest_(text) {
    if (!rest_.empty()) ReadHeader(TakeLine(rest_).c_str());
  }

  bool large() const {
    const auto large = [](long long n) { return n > 200000; };
    const long long cells = static_cast<long long>(numbers_[0]) * numbers_[1];
    return std::any_of(numbers_, numbers_ + 3, large) || large(cells);
  }

  Contents Sparse() {
    Contents matrix{numbers_[0], numbers_[1], {0}, {}, {}};
    const long long nnz = numbers_[2];
    for (int i = 0; i < matrix.nrows; ++i) {
      AppendRow(i, TokensOfRow(i), matrix);
      matrix.rowptr.push_back(
          static_cast<int>(std::min<long long>(std::ssize(matrix.rowval), nnz)));
    }
    if (std::ssize(matrix.rowval) != nnz) {
      throw Ended{
          Format("ReadMat: Something wrong with the number of nonzeros in the input file. "
                 "NNZ=%lld, ActualNNZ=%zd\n",
                 nnz, std::ssize(matrix.rowval))};
    }
    if (matrix.nrows < 0) RefuseRows(0);
    return matrix;
  }

  Contents Dense() {
    Contents matrix{numbers_[0], numbers_[1], {}, {}, {}};
    for (int i = 0; i < matrix.nrows; ++i) {
      const std::vector<Token> tokens = TokensOfRow(i);
      if (std::ssize(tokens) != matrix.ncols) {
        throw Ended{Format("Input Error: Row %d of the input file has %zu entries instead of %d!\n",
                           i, tokens.size(), matrix.ncols)};
      }
      for (const Token& token : tokens) matrix.rowval.push_back(ValueOf(token));
    }
    if (matrix.nrows < 0) RefuseRows(0);
    return matrix;
  }

 private:
  static float ValueOf(const Token& token) {
    return static_cast<float>(std::strtod(token.c_str(), nullptr));
  }

  void ReadHeader(const char* text) {
    for (int& number : numbers_) {
      char* end = nullptr;
      const long value = std::strtol(text, &end, 10);
      if (end == text) return;
      if (value != static_cast<int>(value)) {
        while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
        const std::string digits(text, static_cast<const char*>(end));
        throw Ended{
            Format("ReadMat: The number %.80s in the header of the input file is out of range!\n",
                   digits.c_str())};
      }
      number = static_cast<int>(value);
      text = end;
    }
  }

  [[noreturn]] void RefuseRows(int found) const {
    throw Ended{
        Format("ReadMat: Something wrong with the number of rows in the input file. "
               "Nrows=%d, ActualNrows=%d\n",
               numbers_[0], found)};
  }

  // Of the next row, whose number is i.
  std::vector<Token> TokensOfRow(int i) {
    if (rest_.empty()) RefuseRows(i);
    return TokensOf(TakeLine(rest_));
  }

  static void AppendRow(int i, const std::vector<Token>& tokens, Contents& matrix) {
    for (std::size_t t = 0; t < tokens.size(); t += 2) {
      const long column =
          std::max<long>(std::strtol(tokens[t].c_str(), nullptr, 10), INT_MIN + 1L) - 1;
      if (column >= matrix.ncols) {
        throw Ended{Format("Column number is greater than ncols. Ncols=%d, ColNum=%ld, Row=%d\n",
                           matrix.ncols, column, i)};
      }
      if (t + 1 == tokens.size()) {
        throw Ended{Format("Value could not be found for column! Row:%d, NNZ:%zu\n", i,
                           matrix.rowval.size())};
      }
      matrix.rowind.push_back(static_cast<int>(column));
      matrix.rowval.push_back(ValueOf(tokens[t + 1]));
    }
  }

  std::string_view rest_;  // behind the rows that were read
  int numbers_[3] = {0, 0, 0};
};

template <typename T>
bool SameBits(const std::vector<T>& wanted, const molva::Array<T>& found) {
  Record a, b;
  a.Add(wanted);
  b.Add(found);
  return a == b;
}

void RequireSame(const Contents& wanted, const mardle::Matrix& found) {
  Require(wanted.nrows == found.nrows && wanted.ncols == found.ncols, "the counts");
  Require(SameBits(wanted.rowptr, found.rowptr), "the row starts");
  Require(SameBits(wanted.rowind, found.rowind), "the columns");
  Require(SameBits(wanted.rowval, found.rowval), "the values");
}

bool IsOutOfMemory(const std::string& message) {
  return message.starts_with("***Memory allocation failed for ");
}

}  // namespace

void FuzzMatrix(Bytes bytes) {
  Input input(bytes);
  const int choice = input.Byte();
  const bool dense = (choice & 1) != 0;
  const int blocks = choice >> 1;
  const std::string text = Expanded(input.Rest());

  Contents wanted;
  bool large = false;
  const std::string wanted_message = FatalMessageOf([&] {
    SlowReader slow(text);
    large = slow.large();
    if (!large) wanted = dense ? slow.Dense() : slow.Sparse();
  });

  const MemoryFile file(text);
  const Sandbox sandbox({.fill = 0xff, .blocks = blocks == 0 ? INT_MAX : blocks});
  mardle::Matrix found;
  const std::string message = FatalMessageOf([&] {
    mardle::RunParams params;
    params.filename = molva::mystrdup(file.path());
    params.denseinput = dense ? 1 : 0;
    mardle::ReadMatrix(params, found);
  });
  if (IsOutOfMemory(message)) {
    Require(large || blocks > 0, "memory for a small matrix");
  } else if (!large) {
    Require(message == wanted_message, "'" + message + "' instead of '" + wanted_message + "'");
    if (message.empty()) RequireSame(wanted, found);
  }
}

}  // namespace fuzzing
